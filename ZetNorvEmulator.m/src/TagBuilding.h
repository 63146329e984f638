// Builds the model of an XML message: what ZetNorvBuilders does for hosts, and the comparison run
// for itself.
#pragma once

class CollectorErrors;
class DataScript;
class MsgXML;

namespace zetnorv {

// Whether a model holds the values of its attributes. No comparison looks at them, so the run does
// without; they are checked and reported in either case.
enum class Values { kKept, kLeftOut };

// As ZetNorvBuilders::builderMessage for XML messages.
long buildTags(const char* buffer, int size, const DataScript* script, MsgXML& msg,
               CollectorErrors* collector, Values values);

}  // namespace zetnorv
