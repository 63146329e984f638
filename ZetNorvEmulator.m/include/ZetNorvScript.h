// Reads comparison scripts from the file "xmlStruct.xml" of the configuration directory.
//
// Nothing is thrown. Not synchronised: the client's exchange thread uses it.
#pragma once

#include "DataScript.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT ZetNorvScript {
 public:
  // Builds the script of a message number: the first "MessageChar" element whose "value" is exactly
  // that number in decimal, or else the first such "MessageXML". The file is read at every call, so
  // an edit takes effect at the next message.
  //
  // Returns a new script, which the caller owns and deletes with delete; null when the number has
  // no entry (not traced), and with a trace line, or a line on standard output, when the file is
  // not to be had.
  static DataScript* buildData(int messageNumber);
};
