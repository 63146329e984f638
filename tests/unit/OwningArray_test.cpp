#include "OwningArray.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

namespace {

// An element that counts, and that refuses to be copied as a test wants it.
struct Element {
  enum class Refusal { kNone, kNoMemory, kThrows };

  static inline int alive = 0;
  static inline int allocated = 0;
  static inline int copies = 0;
  static inline Refusal refusal = Refusal::kNone;

  static void* operator new(std::size_t bytes) { return allocate(bytes); }
  static void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return refusal == Refusal::kNoMemory ? nullptr : allocate(bytes);
  }
  static void operator delete(void* element) { release(element); }
  static void operator delete(void* element, const std::nothrow_t&) noexcept { release(element); }

  explicit Element(int n) : number(n) { ++alive; }
  Element(const Element& other) : number(other.number) {
    if (refusal == Refusal::kThrows) throw std::runtime_error("refused");
    ++alive;
    ++copies;
  }
  Element& operator=(const Element&) = delete;
  ~Element() { --alive; }

  int number;

 private:
  static void* allocate(std::size_t bytes) {
    ++allocated;
    return std::malloc(bytes);
  }
  static void release(void* element) noexcept {
    --allocated;
    std::free(element);
  }
};

class OwningArrayTest : public testing::Test {
 protected:
  void SetUp() override {
    Element::alive = 0;
    Element::allocated = 0;
    Element::copies = 0;
    Element::refusal = Element::Refusal::kNone;
  }

  // Every test releases all that it made.
  void TearDown() override {
    EXPECT_EQ(Element::alive, 0);
    EXPECT_EQ(Element::allocated, 0);
  }

  // An array of `capacity` slots, the first `count` of which hold 0, 1, 2, …
  static Element** filled(int count, int capacity) {
    Element** slots = zetnorv::newSlots<Element>(capacity);
    for (int i = 0; i < count; ++i) slots[i] = new Element(i);
    return slots;
  }
};

TEST_F(OwningArrayTest, NewBytesAreZero) {
  char* bytes = zetnorv::newBytes(1000);
  ASSERT_NE(bytes, nullptr);
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(bytes[i], '\0');
  zetnorv::releaseBytes(bytes);
  EXPECT_EQ(bytes, nullptr);
  zetnorv::releaseBytes(bytes);  // nothing to release
  EXPECT_EQ(bytes, nullptr);
}

TEST_F(OwningArrayTest, NoBytesAreAnArrayAllTheSame) {
  char* bytes = zetnorv::newBytes(0);
  EXPECT_NE(bytes, nullptr);
  zetnorv::releaseBytes(bytes);
}

TEST_F(OwningArrayTest, CopiedBytesEndWithANul) {
  char* copy = zetnorv::copyBytes("a\0bcd", 3);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(std::memcmp(copy, "a\0b", 4), 0);
  zetnorv::releaseBytes(copy);
}

TEST_F(OwningArrayTest, CopyOfNoBytesIsOneNul) {
  char* copy = zetnorv::copyBytes(nullptr, 0);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy[0], '\0');
  zetnorv::releaseBytes(copy);
}

TEST_F(OwningArrayTest, NewSlotsAreEmpty) {
  Element** slots = zetnorv::newSlots<Element>(3);
  ASSERT_NE(slots, nullptr);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(slots[i], nullptr);
  zetnorv::releaseSlots(slots, 3);
  EXPECT_EQ(slots, nullptr);
}

TEST_F(OwningArrayTest, NoSlotsAreNoArray) {
  EXPECT_EQ(zetnorv::newSlots<Element>(0), nullptr);
  EXPECT_EQ(zetnorv::newSlots<Element>(-1), nullptr);
}

TEST_F(OwningArrayTest, NewCopyIsAnElementOfItsOwn) {
  const Element element(7);
  const Element* const copy = zetnorv::newCopy(&element);
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, &element);
  EXPECT_EQ(copy->number, 7);
  delete copy;
  EXPECT_EQ(zetnorv::newCopy(static_cast<const Element*>(nullptr)), nullptr);
}

TEST_F(OwningArrayTest, RefusedCopyIsNullAndKeepsNoMemory) {
  const Element element(7);
  for (const auto refusal : {Element::Refusal::kNoMemory, Element::Refusal::kThrows}) {
    Element::refusal = refusal;
    EXPECT_EQ(zetnorv::newCopy(&element), nullptr);
    EXPECT_EQ(Element::allocated, 0);
  }
}

TEST_F(OwningArrayTest, CopiedSlotsHoldDeepCopiesAndPassOverNulls) {
  Element** slots = filled(3, 3);
  delete slots[1];
  slots[1] = nullptr;
  Element** copy = zetnorv::copySlots(slots, 3, 5);
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy[0], slots[0]);
  EXPECT_EQ(copy[0]->number, 0);
  EXPECT_EQ(copy[1], nullptr);
  EXPECT_EQ(copy[2]->number, 2);
  EXPECT_EQ(copy[3], nullptr);
  EXPECT_EQ(copy[4], nullptr);
  zetnorv::releaseSlots(slots, 3);
  zetnorv::releaseSlots(copy, 3);
}

TEST_F(OwningArrayTest, CopiedSlotsGoNoFurtherThanTheirCapacity) {
  Element** slots = filled(3, 3);
  Element** copy = zetnorv::copySlots(slots, 3, 2);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(Element::alive, 5);
  zetnorv::releaseSlots(copy, 2);
  EXPECT_EQ(zetnorv::copySlots(slots, 3, 0), nullptr);
  zetnorv::releaseSlots(slots, 3);
}

TEST_F(OwningArrayTest, CopyOfNoArrayHasEmptySlots) {
  Element** copy = zetnorv::copySlots<Element>(nullptr, 2, 2);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy[0], nullptr);
  EXPECT_EQ(copy[1], nullptr);
  zetnorv::releaseSlots(copy, 2);
}

TEST_F(OwningArrayTest, RefusedElementLeavesANullSlot) {
  Element** slots = filled(2, 2);
  Element::refusal = Element::Refusal::kThrows;
  Element** copy = zetnorv::copySlots(slots, 2, 2);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy[0], nullptr);
  EXPECT_EQ(copy[1], nullptr);
  zetnorv::releaseSlots(copy, 2);
  zetnorv::releaseSlots(slots, 2);
}

TEST_F(OwningArrayTest, ReleasingNoArrayDoesNothing) {
  Element** slots = nullptr;
  zetnorv::releaseSlots(slots, 3);
  EXPECT_EQ(slots, nullptr);
}

TEST_F(OwningArrayTest, OwnedBytesAreReleasedUnlessHandedOn) {
  char* bytes = zetnorv::newBytes(1);
  { const zetnorv::OwnedBytes owner(bytes); }
  EXPECT_EQ(bytes, nullptr);
  char* handedOn = nullptr;
  bytes = zetnorv::copyBytes("a", 1);
  {
    const zetnorv::OwnedBytes owner(bytes);
    handedOn = bytes;
    bytes = nullptr;
  }
  EXPECT_STREQ(handedOn, "a");
  zetnorv::releaseBytes(handedOn);
}

TEST_F(OwningArrayTest, ElementsAreBuiltByDefaultAndDestroyed) {
  struct Counted {
    Counted() { ++alive(); }
    ~Counted() { --alive(); }
    static int& alive() {
      static int count = 0;
      return count;
    }
  };
  Counted* elements = zetnorv::newElements<Counted>(3);
  ASSERT_NE(elements, nullptr);
  EXPECT_EQ(Counted::alive(), 3);
  zetnorv::releaseElements(elements);
  EXPECT_EQ(elements, nullptr);
  EXPECT_EQ(Counted::alive(), 0);
  EXPECT_EQ(zetnorv::newElements<Counted>(0), nullptr);
  EXPECT_EQ(zetnorv::newElements<Counted>(-1), nullptr);
}

TEST_F(OwningArrayTest, MemoryHoldsThePowerOfTwoAboveTheCapacity) {
  const std::pair<int, std::size_t> cases[] = {{-1, 0}, {0, 0},   {1, 1},   {2, 2},
                                               {3, 4},  {15, 16}, {16, 16}, {17, 32}};
  for (const auto& [capacity, slots] : cases) {
    EXPECT_EQ(zetnorv::slotsInMemory(capacity), slots) << capacity;
  }
}

// Both ways of growing, where they do the same.
using Grow = bool (*)(Element**&, int, int&, int) noexcept;
constexpr Grow kBothWays[] = {zetnorv::growSlots<Element>, zetnorv::growSlotsByCopying<Element>};

TEST_F(OwningArrayTest, ArrayWithRoomDoesNotGrow) {
  for (Grow grow : kBothWays) {
    Element** slots = filled(2, 3);
    Element** const before = slots;
    Element* const first = slots[0];
    int capacity = 3;
    EXPECT_TRUE(grow(slots, 2, capacity, 10));
    EXPECT_EQ(slots, before);
    EXPECT_EQ(slots[0], first);
    EXPECT_EQ(capacity, 3);
    zetnorv::releaseSlots(slots, 2);
  }
}

TEST_F(OwningArrayTest, FullArrayGrowsByTheIncrement) {
  for (Grow grow : kBothWays) {
    Element** slots = filled(2, 2);
    int capacity = 2;
    EXPECT_TRUE(grow(slots, 2, capacity, 3));
    EXPECT_EQ(capacity, 5);
    EXPECT_EQ(slots[0]->number, 0);
    EXPECT_EQ(slots[1]->number, 1);
    for (int i = 2; i < 5; ++i) EXPECT_EQ(slots[i], nullptr);
    EXPECT_EQ(Element::alive, 2);
    zetnorv::releaseSlots(slots, 2);
  }
}

TEST_F(OwningArrayTest, GrowingKeepsTheElements) {
  Element** slots = filled(2, 2);
  Element* const first = slots[0];
  int capacity = 2;
  EXPECT_TRUE(zetnorv::growSlots(slots, 2, capacity, 3));
  EXPECT_EQ(slots[0], first);
  EXPECT_EQ(Element::copies, 0);
  zetnorv::releaseSlots(slots, 2);
}

TEST_F(OwningArrayTest, GrowingWithinTheMemoryKeepsTheArray) {
  Element** slots = filled(5, 5);  // eight in memory
  Element** const before = slots;
  int capacity = 5;
  EXPECT_TRUE(zetnorv::growSlots(slots, 5, capacity, 3));
  EXPECT_EQ(capacity, 8);
  EXPECT_EQ(slots, before);
  for (int i = 5; i < 8; ++i) EXPECT_EQ(slots[i], nullptr);
  EXPECT_TRUE(zetnorv::growSlots(slots, 8, capacity, 1));
  EXPECT_EQ(capacity, 9);
  EXPECT_NE(slots, before);
  zetnorv::releaseSlots(slots, 5);
}

TEST_F(OwningArrayTest, GrowingByCopyingReplacesEveryElement) {
  Element** slots = filled(2, 2);
  Element** const before = slots;
  int capacity = 2;
  EXPECT_TRUE(zetnorv::growSlotsByCopying(slots, 2, capacity, 3));
  EXPECT_NE(slots, before);
  EXPECT_EQ(Element::copies, 2);
  EXPECT_EQ(Element::alive, 2);
  zetnorv::releaseSlots(slots, 2);
}

TEST_F(OwningArrayTest, NoArrayGrowsToOne) {
  for (Grow grow : kBothWays) {
    for (const int before : {0, 4}) {
      Element** slots = nullptr;
      int capacity = before;
      EXPECT_TRUE(grow(slots, 0, capacity, 4));
      ASSERT_NE(slots, nullptr);
      EXPECT_EQ(capacity, before + 4);
      for (int i = 0; i < capacity; ++i) EXPECT_EQ(slots[i], nullptr);
      zetnorv::releaseSlots(slots, 0);
    }
  }
}

TEST_F(OwningArrayTest, RefusedGrowthLeavesEverythingAsItWas) {
  for (Grow grow : kBothWays) {
    Element** slots = nullptr;
    int capacity = 0;
    EXPECT_FALSE(grow(slots, 0, capacity, 0));  // no array is that small
    EXPECT_EQ(slots, nullptr);
    EXPECT_EQ(capacity, 0);
  }
}

TEST_F(OwningArrayTest, RefusedGrowthByCopyingKeepsTheElements) {
  Element** slots = filled(2, 2);
  Element* const first = slots[0];
  int capacity = 2;
  EXPECT_FALSE(zetnorv::growSlotsByCopying(slots, 2, capacity, -2));
  EXPECT_EQ(slots[0], first);
  EXPECT_EQ(slots[1]->number, 1);
  EXPECT_EQ(capacity, 2);
  zetnorv::releaseSlots(slots, 2);
}

TEST_F(OwningArrayTest, AppendedElementsStandInTheirOrder) {
  Element** slots = nullptr;
  int count = 0;
  int capacity = 0;
  for (int i = 0; i < 100; ++i) {
    zetnorv::appendSlot(slots, count, capacity, 5, std::make_unique<Element>(i));
  }
  EXPECT_EQ(count, 100);
  EXPECT_EQ(capacity, 100);
  EXPECT_EQ(Element::copies, 0);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(slots[i]->number, i);
  zetnorv::releaseSlots(slots, count);
}

TEST_F(OwningArrayTest, AppendsACopyAlsoOfAnElementOfItsOwn) {
  Element** slots = filled(1, 1);
  int count = 1;
  int capacity = 1;
  slots[0]->number = 42;
  zetnorv::appendCopy(slots, count, capacity, 1, *slots[0]);
  ASSERT_EQ(count, 2);
  EXPECT_NE(slots[1], slots[0]);
  EXPECT_EQ(slots[1]->number, 42);
  zetnorv::releaseSlots(slots, count);
}

TEST_F(OwningArrayTest, RefusedCopyTakesASlotAllTheSame) {
  Element** slots = filled(1, 2);
  int count = 1;
  int capacity = 2;
  Element::refusal = Element::Refusal::kNoMemory;
  zetnorv::appendCopy(slots, count, capacity, 1, *slots[0]);
  ASSERT_EQ(count, 2);
  EXPECT_EQ(slots[1], nullptr);
  zetnorv::releaseSlots(slots, count);
}

TEST_F(OwningArrayTest, ElementThatFindsNoRoomIsDestroyed) {
  Element** slots = nullptr;
  int count = 0;
  int capacity = 0;
  zetnorv::appendSlot(slots, count, capacity, 0, std::make_unique<Element>(1));
  EXPECT_EQ(count, 0);
  EXPECT_EQ(slots, nullptr);
  EXPECT_EQ(Element::alive, 0);
}

}  // namespace
