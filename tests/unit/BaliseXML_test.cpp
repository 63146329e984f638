#include "BaliseXML.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "CopyOfItself.h"
#include "NullReferenceTo.h"
#include "TraceRecorder.h"

namespace {

using Lines = std::vector<std::string>;

// The tag and what is below it: "name#level(attribute=value …){child …}", '-' for an empty slot.
std::string describe(const BaliseXML* tag) {
  if (tag == nullptr) return "-";
  std::string text = tag->_name.isNull() ? "" : tag->_name.gchar();
  if (tag->_hierarchie != 0) text += "#" + std::to_string(tag->_hierarchie);
  if (tag->_nbAttributs > 0) {
    text += "(";
    for (int i = 0; i < tag->_nbAttributs; ++i) {
      if (i > 0) text += " ";
      const AttributXML* attribut = tag->_attribut[i];
      text += attribut == nullptr
                  ? "-"
                  : std::string(attribut->_name.gchar()) + "=" + attribut->_value.gchar();
    }
    text += ")";
  }
  if (tag->_nbChildren > 0) {
    text += "{";
    for (int i = 0; i < tag->_nbChildren; ++i) {
      if (i > 0) text += " ";
      text += describe(tag->_child[i]);
    }
    text += "}";
  }
  return text;
}

std::string describe(const BaliseXML& tag) { return describe(&tag); }

// A tag with the attributes a=1 and b=2, and a child c that has a child d.
BaliseXML family() {
  BaliseXML tag("Tag");
  tag._hierarchie = 3;
  tag.addAttributP(AttributXML("a", "1"));
  tag.addAttributP(AttributXML("b", "2"));
  BaliseXML child("c");
  child.addChildP(BaliseXML("d"));
  tag.addChildP(child);
  return tag;
}

// Slots as a refused allocation leaves them.
void emptyChild(BaliseXML& tag, int i) {
  delete tag._child[i];
  tag._child[i] = nullptr;
}
void emptyAttribut(BaliseXML& tag, int i) {
  delete tag._attribut[i];
  tag._attribut[i] = nullptr;
}

void expectErrorTag(const BaliseXML& tag) {
  EXPECT_EQ("ERROR", describe(tag));
  EXPECT_EQ(0, tag.getHierarchie());
  EXPECT_EQ(2, tag._capacityAttributs);
  EXPECT_EQ(2, tag._capacityChildren);
  EXPECT_NE(nullptr, tag._attribut);
  EXPECT_NE(nullptr, tag._child);
}

TEST(BaliseXMLTest, StartsWithItsNameAndRoomFor2AttributesAndChildren) {
  const BaliseXML tag("Document");
  EXPECT_STREQ("Document", tag.getName().gchar());
  EXPECT_EQ(0, tag.getHierarchie());
  EXPECT_EQ(0, tag.getNbAttributs());
  EXPECT_EQ(0, tag.getNbChildren());
  EXPECT_EQ(2, tag._capacityAttributs);
  EXPECT_EQ(2, tag._capacityChildren);
  ASSERT_NE(nullptr, tag._attribut);
  ASSERT_NE(nullptr, tag._child);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(nullptr, tag._attribut[i]);
    EXPECT_EQ(nullptr, tag._child[i]);
  }
}

TEST(BaliseXMLTest, CutsTheNameAtItsFirstLineFeed) {
  EXPECT_STREQ("Do", BaliseXML("Do\ncument").getName().gchar());
  EXPECT_EQ(0, BaliseXML("\ncument").getName().glength());
  EXPECT_TRUE(BaliseXML(nullptr).getName().isNull());
}

TEST(BaliseXMLTest, TheNameHandedOutIsACopy) {
  const BaliseXML tag("Document");
  MString name = tag.getName();
  name.set("changed");
  EXPECT_STREQ("Document", tag.getName().gchar());
}

TEST(BaliseXMLTest, TheThirdAttributeGrowsTheCapacityFrom2To7) {
  BaliseXML tag("Tag");
  tag.addAttributP(AttributXML("a", "1"));
  tag.addAttributP(AttributXML("b", "2"));
  EXPECT_EQ(2, tag._capacityAttributs);
  tag.addAttributP(AttributXML("c", "3"));
  EXPECT_EQ(7, tag._capacityAttributs);
  EXPECT_EQ(2, tag._capacityChildren);
  EXPECT_EQ(3, tag.getNbAttributs());
  EXPECT_EQ("Tag(a=1 b=2 c=3)", describe(tag));
}

TEST(BaliseXMLTest, TheThirdChildGrowsTheCapacityFrom2To7) {
  BaliseXML tag("Tag");
  for (const char* name : {"a", "b", "c"}) tag.addChildP(BaliseXML(name));
  EXPECT_EQ(7, tag._capacityChildren);
  EXPECT_EQ(2, tag._capacityAttributs);
  EXPECT_EQ(3, tag.getNbChildren());
  EXPECT_EQ("Tag{a b c}", describe(tag));
}

TEST(BaliseXMLTest, GrowsBy5EveryTime) {
  BaliseXML tag("Tag");
  for (int i = 0; i < 33; ++i) {
    tag.addAttributP(AttributXML(std::to_string(i).c_str(), "v"));
    tag.addChildP(BaliseXML(std::to_string(i).c_str()));
  }
  EXPECT_EQ(37, tag._capacityAttributs);
  EXPECT_EQ(37, tag._capacityChildren);
  for (int i = 0; i < 33; ++i) {
    EXPECT_STREQ(std::to_string(i).c_str(), tag.getAttributP(i)->_name.gchar());
    EXPECT_STREQ(std::to_string(i).c_str(), tag.getChildP(i)->getName().gchar());
  }
}

TEST(BaliseXMLTest, WhatIsAddedIsCopiedDeeply) {
  BaliseXML tag("Tag");
  BaliseXML child = family();
  AttributXML attribut("a", "1");
  tag.addChildP(child);
  tag.addAttributP(attribut);
  child._name.set("changed");
  child._child[0]->_name.set("changed");
  attribut._value.set("changed");
  EXPECT_EQ("Tag(a=1){Tag#3(a=1 b=2){c{d}}}", describe(tag));
}

TEST(BaliseXMLTest, ANullChildIsTracedAndNotAdded) {
  TraceRecorder trace;
  BaliseXML tag("Tag");
  tag.addChildP(nullReferenceTo<BaliseXML>());
  EXPECT_EQ(0, tag.getNbChildren());
  EXPECT_EQ(Lines{"BaliseXML: child == NULL"}, trace.texts());
  EXPECT_EQ(2, trace.lines()[0].level);
}

TEST(BaliseXMLTest, ANullAttributeIsTracedAndNotAdded) {
  TraceRecorder trace;
  BaliseXML tag("Tag");
  tag.addAttributP(nullReferenceTo<AttributXML>());
  EXPECT_EQ(0, tag.getNbAttributs());
  EXPECT_EQ(Lines{"BaliseXML: attribut == NULL"}, trace.texts());
  EXPECT_EQ(2, trace.lines()[0].level);
}

TEST(BaliseXMLTest, OwnElementsCanBeAddedWhenItIsFull) {
  BaliseXML tag("Tag");
  for (const char* name : {"a", "b"}) {
    tag.addChildP(BaliseXML(name));
    tag.addAttributP(AttributXML(name, "1"));
  }
  tag.addChildP(*tag._child[0]);
  tag.addAttributP(*tag._attribut[1]);
  EXPECT_EQ("Tag(a=1 b=1 b=1){a b a}", describe(tag));
}

TEST(BaliseXMLTest, ATagAddedToItselfShowsTheStateBefore) {
  BaliseXML tag("Tag");
  tag.addChildP(BaliseXML("a"));
  tag.addChildP(tag);
  EXPECT_EQ("Tag{a Tag{a}}", describe(tag));
  tag.addChildP(tag);
  EXPECT_EQ("Tag{a Tag{a} Tag{a Tag{a}}}", describe(tag));
}

TEST(BaliseXMLTest, AccessorsGiveNullOutsideTheLists) {
  const BaliseXML tag = family();
  EXPECT_EQ(tag._child[0], tag.getChildP(0));
  EXPECT_EQ(tag._attribut[1], tag.getAttributP(1));
  for (int i : {-1, 2, 3, INT_MIN, INT_MAX}) {
    EXPECT_EQ(nullptr, tag.getAttributP(i)) << i;
    EXPECT_EQ(nullptr, tag.getChildP(i)) << i;
  }
  EXPECT_EQ(nullptr, tag.getChildP(1));
  EXPECT_EQ(nullptr, BaliseXML("Tag").getChildP(0));
  EXPECT_EQ(nullptr, BaliseXML("Tag").getAttributP(0));
}

TEST(BaliseXMLTest, FindsTheFirstAttributeWhoseNameBeginsTheSearchedOne) {
  BaliseXML tag("Tag");
  tag.addAttributP(AttributXML("Reference", "0"));
  tag.addAttributP(AttributXML("Ref", "1"));
  tag.addAttributP(AttributXML("Type", "2"));
  EXPECT_EQ(tag._attribut[0], tag.getAttribut("Reference"));
  EXPECT_EQ(tag._attribut[0], tag.getAttribut("ReferenceName"));
  EXPECT_EQ(tag._attribut[1], tag.getAttribut("Ref"));
  EXPECT_EQ(tag._attribut[1], tag.getAttribut("Refer"));
  EXPECT_EQ(tag._attribut[2], tag.getAttribut("Type"));
  EXPECT_EQ(nullptr, tag.getAttribut("Re"));
  EXPECT_EQ(nullptr, tag.getAttribut("type"));
  EXPECT_EQ(nullptr, tag.getAttribut(""));
}

TEST(BaliseXMLTest, AnAttributeWithoutNameIsFoundForEverything) {
  BaliseXML tag("Tag");
  tag.addAttributP(AttributXML("Type", "0"));
  tag.addAttributP(AttributXML("", "1"));
  EXPECT_EQ(tag._attribut[0], tag.getAttribut("Type"));
  EXPECT_EQ(tag._attribut[1], tag.getAttribut("Other"));
  EXPECT_EQ(tag._attribut[1], tag.getAttribut(""));
}

TEST(BaliseXMLTest, FindsNoAttributeForANullNameOrInAnEmptyTag) {
  TraceRecorder trace;
  BaliseXML tag("Tag");
  EXPECT_EQ(nullptr, tag.getAttribut("a"));
  tag.addAttributP(AttributXML("", "1"));
  EXPECT_EQ(nullptr, tag.getAttribut(nullptr));
  EXPECT_EQ(Lines{}, trace.texts());
}

TEST(BaliseXMLTest, TheAttributeSearchPassesOverAnEmptySlot) {
  BaliseXML tag = family();
  emptyAttribut(tag, 0);
  EXPECT_EQ(nullptr, tag.getAttribut("a"));
  EXPECT_EQ(tag._attribut[1], tag.getAttribut("b"));
}

TEST(BaliseXMLTest, ReplacesAChildByADeepCopy) {
  BaliseXML tag("Tag");
  for (const char* name : {"a", "b", "c"}) tag.addChildP(BaliseXML(name));
  BaliseXML other = family();
  tag.modifChildP(1, &other);
  other._child[0]->_name.set("changed");
  EXPECT_EQ("Tag{a Tag#3(a=1 b=2){c{d}} c}", describe(tag));
  EXPECT_EQ(3, tag.getNbChildren());
  EXPECT_EQ(7, tag._capacityChildren);
}

TEST(BaliseXMLTest, ReplacesAChildByACopyOfItsOwnParent) {
  BaliseXML tag = family();
  tag.modifChildP(0, &tag);
  EXPECT_EQ("Tag#3(a=1 b=2){Tag#3(a=1 b=2){c{d}}}", describe(tag));
}

TEST(BaliseXMLTest, ReplacesAChildByACopyOfItselfOrOfWhatIsBelowIt) {
  BaliseXML tag = family();
  tag.modifChildP(0, tag._child[0]);
  EXPECT_EQ("Tag#3(a=1 b=2){c{d}}", describe(tag));
  tag.modifChildP(0, tag._child[0]->_child[0]);
  EXPECT_EQ("Tag#3(a=1 b=2){d}", describe(tag));
}

TEST(BaliseXMLTest, ReplacesAChildByAnErrorTagForNull) {
  BaliseXML tag = family();
  tag.modifChildP(0, nullptr);
  EXPECT_EQ("Tag#3(a=1 b=2){ERROR}", describe(tag));
  expectErrorTag(*tag._child[0]);
}

TEST(BaliseXMLTest, ReplacesNothingOutsideTheList) {
  BaliseXML tag("Tag");
  for (const char* name : {"a", "b", "c"}) tag.addChildP(BaliseXML(name));
  const BaliseXML other("x");
  for (int i : {-1, 3, 6, 7, INT_MIN, INT_MAX}) {
    tag.modifChildP(i, &other);
    tag.modifChildP(i, nullptr);
    EXPECT_EQ("Tag{a b c}", describe(tag)) << i;
  }
}

TEST(BaliseXMLTest, FillsAnEmptySlotWhenItIsReplaced) {
  BaliseXML tag = family();
  emptyChild(tag, 0);
  const BaliseXML other("x");
  tag.modifChildP(0, &other);
  EXPECT_EQ("Tag#3(a=1 b=2){x}", describe(tag));
}

TEST(BaliseXMLTest, ACopyIsDeep) {
  BaliseXML tag = family();
  for (int i = 0; i < 3; ++i) tag.addAttributP(AttributXML("x", "y"));
  tag.addChildP(BaliseXML("e"));
  tag.addChildP(BaliseXML("f"));
  emptyAttribut(tag, 2);
  emptyChild(tag, 1);
  const BaliseXML copy(tag);
  tag._name.set("changed");
  tag._child[0]->_child[0]->_name.set("changed");
  tag._attribut[0]->_value.set("changed");
  EXPECT_EQ("Tag#3(a=1 b=2 - x=y x=y){c{d} - f}", describe(copy));
  EXPECT_EQ(7, copy._capacityAttributs);
  EXPECT_EQ(7, copy._capacityChildren);
  EXPECT_EQ(3, copy.getHierarchie());
}

TEST(BaliseXMLTest, ACopyHasRoomForMore) {
  BaliseXML copy(family());
  copy.addChildP(BaliseXML("e"));
  EXPECT_EQ(2, copy._capacityChildren);
  copy.addChildP(BaliseXML("f"));
  EXPECT_EQ(7, copy._capacityChildren);
  EXPECT_EQ("Tag#3(a=1 b=2){c{d} e f}", describe(copy));
}

TEST(BaliseXMLTest, ACopyOfItselfOrOfANullReferenceIsAnErrorTag) {
  CopyOfItself<BaliseXML> self;
  expectErrorTag(*self);
  expectErrorTag(BaliseXML(nullReferenceTo<BaliseXML>()));
}

TEST(BaliseXMLTest, AssignmentCopiesTheNameAndSharesTheRest) {
  BaliseXML source = family();
  source.addChildP(BaliseXML("e"));
  source.addChildP(BaliseXML("f"));
  BaliseXML target("Old");
  target._hierarchie = 9;
  AttributXML** const ownAttributs = target._attribut;
  BaliseXML** const ownChildren = target._child;
  EXPECT_EQ(&target, &(target = source));
  EXPECT_NE(source._name.gchar(), target._name.gchar());
  EXPECT_EQ(source._attribut, target._attribut);
  EXPECT_EQ(source._child, target._child);
  EXPECT_EQ(2, target._capacityAttributs);
  EXPECT_EQ(7, target._capacityChildren);
  EXPECT_EQ("Tag#3(a=1 b=2){c{d} e f}", describe(target));
  // Given back what it had: the two must not both be destroyed as they are.
  target._attribut = ownAttributs;
  target._child = ownChildren;
  target._nbAttributs = 0;
  target._nbChildren = 0;
}

TEST(BaliseXMLTest, AssignmentFreesNothing) {
  const BaliseXML source("Tag");
  BaliseXML target = family();
  AttributXML** const ownAttributs = target._attribut;
  BaliseXML** const ownChildren = target._child;
  target = source;
  EXPECT_STREQ("a", ownAttributs[0]->_name.gchar());
  EXPECT_EQ("c{d}", describe(ownChildren[0]));
  target._attribut = ownAttributs;
  target._child = ownChildren;
  target._nbAttributs = 2;
  target._nbChildren = 1;
}

TEST(BaliseXMLTest, AssignmentToItselfEmptiesTheNameOnly) {
  BaliseXML tag = family();
  const BaliseXML& same = tag;
  tag = same;
  EXPECT_EQ("#3(a=1 b=2){c{d}}", describe(tag));
}

TEST(BaliseXMLTest, AssignmentFromANullReferenceChangesNothing) {
  BaliseXML tag = family();
  tag = nullReferenceTo<BaliseXML>();
  EXPECT_EQ("Tag#3(a=1 b=2){c{d}}", describe(tag));
}

TEST(BaliseXMLTest, ADeepTreeIsCopiedComparedAndDestroyed) {
  BaliseXML* inner = new BaliseXML("leaf");
  for (int i = 0; i < 2000; ++i) {
    BaliseXML* outer = new BaliseXML("tag");
    outer->_child[0] = inner;
    outer->_nbChildren = 1;
    inner = outer;
  }
  {
    const BaliseXML copy(*inner);
    EXPECT_EQ(1, copy == *inner);
    EXPECT_NE(inner->_child[0], copy._child[0]);
  }
  delete inner;
}

}  // namespace
