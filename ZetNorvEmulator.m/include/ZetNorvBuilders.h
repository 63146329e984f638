// Turns messages into the models that are compared, and takes identifiers out of requests.
//
// A message starts with four header bytes, the operation number. All operations are static; a
// refused argument is a trace line. Nothing is thrown. Not synchronised.
#pragma once

#include "ZetNorvExport.h"

class CollectorErrors;
class DataScript;
class Msg;
class MsgXML;
class ZetNorvDb_Table;

class ZETNORV_EXPORT ZetNorvBuilders {
 public:
  // Cuts the `size` bytes at `buffer`, header included, into the fields of a "CHAR" script. Fields
  // that begin at or behind the message's end are left out, and one that reaches past it gets the
  // bytes that are left, with that size. `collector` is not used.
  //
  // An entry whose name begins with "$" also declares a variable: the four bytes at its place,
  // little-endian, or 0 when fewer are left. An entry with a `sizeVar` is as long as that
  // variable's value says, but 4 bytes when it says more than 100. A negative length goes back, at
  // most to the first byte.
  //
  // Returns a new message, which the caller owns and deletes with delete; null for a null buffer, a
  // null script, and a script of another kind that has entries.
  static Msg* builderMessage(const char* buffer, int size, DataScript* script,
                             CollectorErrors* collector);

  // Fills the empty `msg` with one tag for every element that an entry of the "XML_" script names,
  // entry by entry, each in document order: its attributes that the entry names and that are not
  // empty, and one child without content for every child node, "#text" included. What the message
  // lacks, and values that look like a missing identifier (see checkFFFFF), become findings in
  // `collector`, which may be null.
  //
  // Returns S_OK, or E_FAIL for a null buffer or script, for text behind the header that is no XML
  // document, and for a script of another kind that has entries; tags found before that stay.
  static long builderMessage(const char* buffer, int size, DataScript* script, MsgXML& msg,
                             CollectorErrors* collector);

  // Puts in the place of every child of a top-level tag a deep copy of the first top-level tag of
  // its name (see MsgXML::findBalise), as that one is at the moment: one that stands earlier in the
  // list is filled already, a later one is not.
  //
  // Copies of copies can outgrow any memory (a tag with 40 children of its own name would be copied
  // 2^40 times). Once the copies hold 256 MiB and 16 times what the message held, or nest deeper
  // than 1,000 tags, the rest of the children stay as they are, with a trace line.
  static void restructMessage(MsgXML* msg);

  // Adds a finding for every child of a top-level tag that no entry of the script allows inside
  // that tag (see DataScript::hasBalise), child nodes that are no elements included. Does nothing
  // when an argument is null.
  static void checkFather(MsgXML* msg, DataScript* script, CollectorErrors* collector);

  // Adds a finding when more than two neighbouring pairs in `str` are "FF" or "ff", overlapping
  // ones counted each: so four F in a row are reported, and three are not.
  static void checkFFFFF(const char* str, CollectorErrors* collect);

  // Appends one row to `table` for every LogObject element of the request, in document order: its
  // "Identifier", cut at a comma into the two columns. In debug mode the request's text is also
  // appended to "buildTemp.log".
  //
  // Returns 0, or 1 when there is no such element, or E_FAIL with a trace line when the text behind
  // the header is no XML document.
  static long extractLogObject(const char* message, int size, ZetNorvDb_Table& table);
  // The same for the Reference elements.
  static long extractRefObject(const char* message, int size, ZetNorvDb_Table& table);
};
