// Fills the name-only children of an XML message's tags.
#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "Guard.h"
#include "MsgXML.h"
#include "Restructuring.h"
#include "TextOf.h"
#include "ZetNorvBuilders.h"

using zetnorv::textOf;

namespace {

// Finds tags as MsgXML::findBalise does, without walking all of them for every child: only the
// first top-level tag of each name can ever be found, and only those that begin with the child's
// first character need be looked at. The names of the top-level tags must not change meanwhile.
class TagIndex {
 public:
  static constexpr int kNone = -1;

  explicit TagIndex(const MsgXML& msg) : _msg(msg) {
    std::unordered_set<std::string> names;
    for (int i = 0; i < msg.getNbBalises(); ++i) {
      const BaliseXML* tag = msg.getBalise(i);
      if (tag == nullptr) return;  // nothing behind an empty slot is ever found
      if (tag->_name.glength() == 0) {
        _withoutName = i;  // it is found for every child that the tags before it are not found for
        return;
      }
      if (names.insert(textOf(tag->_name)).second) bucketOf(tag->_name).push_back(i);
    }
  }

  // The index of the tag found for `name`, or kNone.
  int find(const MString& name) {
    if (name.gchar() == nullptr) {
      _msg.findBalise(nullptr);  // traces it
      return kNone;
    }
    for (const int i : bucketOf(name)) {
      if (_msg.getBalise(i)->_name.compare(name.gchar())) return i;
    }
    return _withoutName;
  }

 private:
  std::vector<int>& bucketOf(const MString& name) {
    return _byFirstCharacter[static_cast<unsigned char>(name.extract(0))];
  }

  const MsgXML& _msg;
  std::array<std::vector<int>, 256> _byFirstCharacter;
  int _withoutName = kNone;
};

// What a tag takes in memory with all that it holds.
struct Extent {
  std::int64_t bytes = 0;
  int depth = 1;  // tags within tags
};

std::int64_t bytesOf(const MString& text) { return text.glength() + 1; }

Extent extentOf(const BaliseXML& tag) {
  constexpr auto kSlot = static_cast<std::int64_t>(sizeof(void*));
  Extent extent;
  extent.bytes = static_cast<std::int64_t>(sizeof tag) + bytesOf(tag._name) +
                 kSlot * (tag._capacityAttributs + tag._capacityChildren);
  for (int i = 0; i < tag.getNbAttributs(); ++i) {
    const AttributXML* attribut = tag.getAttributP(i);
    if (attribut == nullptr) continue;
    extent.bytes += static_cast<std::int64_t>(sizeof *attribut) + bytesOf(attribut->_name) +
                    bytesOf(attribut->_value);
  }
  for (int i = 0; i < tag.getNbChildren(); ++i) {
    const BaliseXML* child = tag.getChildP(i);
    if (child == nullptr) continue;
    const Extent inner = extentOf(*child);
    extent.bytes += inner.bytes;
    extent.depth = std::max(extent.depth, inner.depth + 1);
  }
  return extent;
}

// Keeps account of the copies, so that they stay within bounds whatever the message holds.
class CopyAccount {
 public:
  explicit CopyAccount(const MsgXML& msg) {
    std::int64_t held = 0;
    for (int i = 0; i < msg.getNbBalises(); ++i) {
      const BaliseXML* tag = msg.getBalise(i);
      _extents.push_back(tag == nullptr ? Extent() : extentOf(*tag));
      held += _extents.back().bytes;
    }
    _bytesLeft = kBytes + kTimesHeld * held;
  }

  // Puts a copy of tag `found` inside tag `parent`. False when it is one too many.
  bool admit(int found, int parent) {
    const Extent copy = _extents[static_cast<std::size_t>(found)];
    Extent& into = _extents[static_cast<std::size_t>(parent)];
    if (copy.bytes > _bytesLeft || copy.depth >= kDepth) return false;
    _bytesLeft -= copy.bytes;
    into.bytes += copy.bytes;
    into.depth = std::max(into.depth, copy.depth + 1);
    return true;
  }

 private:
  static constexpr std::int64_t kBytes = std::int64_t{256} << 20;
  static constexpr std::int64_t kTimesHeld = 16;
  static constexpr int kDepth = 1000;

  std::vector<Extent> _extents;
  std::int64_t _bytesLeft = 0;
};

}  // namespace

void zetnorv::fillTags(MsgXML& msg, const PutTag& put) {
  TagIndex index(msg);
  CopyAccount account(msg);
  for (int i = 0; i < msg.getNbBalises(); ++i) {
    const BaliseXML* tag = msg.getBalise(i);
    if (tag == nullptr) {
      ZetNorvTrace.TraPutLN(2, "restructMessage: tmpbal == NULL");
      return;
    }
    for (int c = 0; c < tag->getNbChildren(); ++c) {
      const BaliseXML* child = tag->getChildP(c);
      const int found = child == nullptr ? TagIndex::kNone : index.find(child->_name);
      if (found == TagIndex::kNone) continue;
      if (!account.admit(found, i)) {
        ZetNorvTrace.TraPutLN(2, "restructMessage: too many copies");
        return;
      }
      put(i, c, found);
    }
  }
}

void ZetNorvBuilders::restructMessage(MsgXML* msg) {
  if (msg == nullptr) {
    ZetNorvTrace.TraPutLN(2, "restructMessage: msg == NULL");
    return;
  }
  zetnorv::guarded("ZetNorvBuilders::restructMessage", [&] {
    zetnorv::fillTags(*msg, [msg](int parent, int c, int found) {
      msg->getBalise(parent)->modifChildP(c, msg->getBalise(found));
    });
    return S_OK;
  });
}
