// Puts new parts into an XML message's model as they are, where MsgXML::add and its like would copy
// them.
#pragma once

#include <memory>
#include <new>
#include <utility>

#include "BaliseXML.h"
#include "MsgXML.h"
#include "OwningArray.h"

namespace zetnorv {

// What a full list of a model grows by.
inline constexpr int kModelGrowth = 5;

// A new part of a model; null when it is refused.
template <class Part, class... Arguments>
std::unique_ptr<Part> newPart(Arguments... arguments) {
  return std::unique_ptr<Part>(noted(new (std::nothrow) Part(arguments...)));
}

// Each appends `part`, which was refused when it is null: that takes a slot as well.
inline void adopt(MsgXML& msg, std::unique_ptr<BaliseXML> part) {
  appendSlot(msg._balise, msg._nbBalises, msg._capacity, kModelGrowth, std::move(part));
}

inline void adopt(BaliseXML& tag, std::unique_ptr<BaliseXML> part) {
  appendSlot(tag._child, tag._nbChildren, tag._capacityChildren, kModelGrowth, std::move(part));
}

inline void adopt(BaliseXML& tag, std::unique_ptr<AttributXML> part) {
  appendSlot(tag._attribut, tag._nbAttributs, tag._capacityAttributs, kModelGrowth,
             std::move(part));
}

}  // namespace zetnorv
