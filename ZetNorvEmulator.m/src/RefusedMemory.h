// Notes that memory was refused while the library works for its host.
//
// A string that gets no memory for a piece stays as it is and says nothing: such is the strings'
// contract. A path that lacks a piece names another place, so a call that met a refusal opens,
// makes and serves nothing any more.
#pragma once

namespace zetnorv {

class RefusedMemory {
 public:
  // One call of the host; calls within it belong to it.
  class Call {
   public:
    Call() noexcept {
      if (_depth++ == 0) _met = false;
    }
    ~Call() { --_depth; }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
  };

  static void note() noexcept { _met = true; }

  // Whether the host's present call met a refusal. Never outside a call.
  static bool wasMet() noexcept { return _depth > 0 && _met; }

 private:
  static inline int _depth = 0;
  static inline bool _met = false;
};

}  // namespace zetnorv
