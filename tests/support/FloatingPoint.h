// The floating point unit as a client's numeric library may have set it.
#pragma once

// Makes invalid operations, divisions by zero and overflows end the process while it lives.
class FloatingPointTraps {
 public:
  FloatingPointTraps();
  ~FloatingPointTraps();
  FloatingPointTraps(const FloatingPointTraps&) = delete;
  FloatingPointTraps& operator=(const FloatingPointTraps&) = delete;

  // Whether they are set as this object has set them.
  bool areSet() const;

 private:
  int _before;
};

// Rounds in a direction of <cfenv> while it lives.
class Rounding {
 public:
  explicit Rounding(int direction);
  ~Rounding();
  Rounding(const Rounding&) = delete;
  Rounding& operator=(const Rounding&) = delete;

 private:
  int _before;
};
