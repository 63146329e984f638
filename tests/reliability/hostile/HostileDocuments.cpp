#include "HostileDocuments.h"

#include <cstddef>
#include <string_view>

#include "ParsedXml.h"

namespace {

using namespace std::string_literals;
using Bait = const std::string&;

constexpr int kMegabyte = 1024 * 1024;

std::string declared(const std::string& declarations, const std::string& root) {
  return "<!DOCTYPE a [" + declarations + "]>" + root;
}

// `count` entities, each made of ten of the one before, the last of which is called "last".
std::string nestedEntities(int count, const char* percent, const char* reference) {
  std::string text = "<!ENTITY "s + percent + "e0 'ha'>";
  for (int i = 1; i <= count; ++i) {
    const std::string name = i == count ? "last" : "e" + std::to_string(i);
    const std::string inner = reference + ("e" + std::to_string(i - 1)) + ";";
    text += "<!ENTITY "s + percent + name + " '" + repeated(inner, 10) + "'>";
  }
  return text;
}

std::string attributes(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += " a" + std::to_string(i) + "=\"v\"";
  return text;
}

std::string inUtf16(std::string_view ascii, bool littleEndian) {
  std::string text;
  for (const char c : ascii) text += littleEndian ? std::string{c, '\0'} : std::string{'\0', c};
  return text;
}

std::string inUtf32(std::string_view ascii, bool littleEndian) {
  std::string text;
  for (const char c : ascii) {
    text += littleEndian ? std::string{c, '\0', '\0', '\0'} : std::string{'\0', '\0', '\0', c};
  }
  return text;
}

const std::vector<HostileDocument> kDocuments = {
    // What they load.
    {"file as an entity", false,
     [](Bait b) { return declared("<!ENTITY e SYSTEM '" + b + "'>", "<a>&e;</a>"); }},
    {"file as a URL", false,
     [](Bait b) { return declared("<!ENTITY e SYSTEM 'file://" + b + "'>", "<a>&e;</a>"); }},
    {"file as a public entity", false,
     [](Bait b) { return declared("<!ENTITY e PUBLIC 'p' '" + b + "'>", "<a>&e;</a>"); }},
    {"file in an attribute", false,
     [](Bait b) { return declared("<!ENTITY e SYSTEM '" + b + "'>", "<a x='&e;'/>"); }},
    {"file in a default attribute", false,
     [](Bait b) {
       return declared("<!ENTITY e SYSTEM '" + b + "'><!ATTLIST a x CDATA '&e;'>", "<a/>");
     }},
    {"file by way of another entity", false,
     [](Bait b) {
       return declared("<!ENTITY e SYSTEM '" + b + "'><!ENTITY f '&e;'>", "<a>&f;</a>");
     }},
    {"file as declarations", false,
     [](Bait b) { return declared("<!ENTITY % e SYSTEM '" + b + "'>%e;", "<a/>"); }},
    {"file as public declarations", false,
     [](Bait b) { return declared("<!ENTITY % e PUBLIC 'p' '" + b + "'>%e;", "<a/>"); }},
    {"file sent away", false,
     [](Bait b) {
       return declared("<!ENTITY % f SYSTEM '" + b +
                           "'><!ENTITY % s \"<!ENTITY t SYSTEM 'http://localhost:1/%f;'>\">%s;",
                       "<a>&t;</a>");
     }},
    {"file as an unparsed entity", true,
     [](Bait b) {
       return declared("<!NOTATION n SYSTEM '" + b + "'><!ENTITY e SYSTEM '" + b +
                           "' NDATA n><!ATTLIST a x ENTITY #IMPLIED>",
                       "<a x='e'/>");
     }},
    {"file as a document type", true, [](Bait b) { return "<!DOCTYPE a SYSTEM '" + b + "'><a/>"; }},
    {"file as a document type's URL", true,
     [](Bait b) { return "<!DOCTYPE a SYSTEM 'file://" + b + "'><a/>"; }},
    {"file as a public document type", true,
     [](Bait b) { return "<!DOCTYPE a PUBLIC 'p' '" + b + "' [<!ENTITY e 'x'>]><a>&e;</a>"; }},
    {"file as a schema", true,
     [](Bait b) {
       return "<a xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
              "xsi:noNamespaceSchemaLocation='" +
              b + "' xsi:schemaLocation='urn:a " + b + "'/>";
     }},
    {"file as a style sheet", true,
     [](Bait b) { return "<?xml-stylesheet type='text/xsl' href='" + b + "'?><a/>"; }},
    {"file as an inclusion", true,
     [](Bait b) {
       return "<a xmlns:xi='http://www.w3.org/2001/XInclude'><xi:include href='" + b +
              "' parse='text'/></a>";
     }},
    {"file as a base", true, [](Bait b) { return "<a xml:base='file://" + b + "'/>"; }},
    {"network as an entity", false,
     [](Bait) { return declared("<!ENTITY e SYSTEM 'http://localhost:1/x'>", "<a>&e;</a>"); }},
    {"network by name as an entity", false,
     [](Bait) { return declared("<!ENTITY e SYSTEM 'https://example.invalid/x'>", "<a>&e;</a>"); }},
    {"file transfer as an entity", false,
     [](Bait) { return declared("<!ENTITY e SYSTEM 'ftp://localhost/x'>", "<a>&e;</a>"); }},
    {"network as declarations", false,
     [](Bait) { return declared("<!ENTITY % e SYSTEM 'http://localhost:1/x'>%e;", "<a/>"); }},
    {"network as a document type", true,
     [](Bait) { return "<!DOCTYPE a SYSTEM 'http://localhost:1/a.dtd'><a/>"s; }},
    {"network as a schema", true,
     [](Bait) {
       return "<a xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
              "xsi:noNamespaceSchemaLocation='http://localhost:1/a.xsd'/>"s;
     }},
    {"share as an entity", false,
     [](Bait) { return declared("<!ENTITY e SYSTEM '\\\\localhost\\share\\x'>", "<a>&e;</a>"); }},
    {"relative entity", false,
     [](Bait) { return declared("<!ENTITY e SYSTEM '../../x'>", "<a>&e;</a>"); }},
    {"device as an entity", false,
     [](Bait) { return declared("<!ENTITY e SYSTEM '/dev/zero'>", "<a>&e;</a>"); }},
    {"standard input as an entity", false,
     [](Bait) { return declared("<!ENTITY e SYSTEM '-'>", "<a>&e;</a>"); }},

    // How they grow.
    {"entities of entities", false,
     [](Bait) { return declared(nestedEntities(20, "", "&"), "<a>&last;</a>"); }},
    {"entities of entities in an attribute", false,
     [](Bait) { return declared(nestedEntities(20, "", "&"), "<a x='&last;'/>"); }},
    {"entities of entities in a default attribute", false,
     [](Bait) {
       return declared(nestedEntities(20, "", "&") + "<!ATTLIST a x CDATA '&last;'>", "<a/>");
     }},
    {"declarations of declarations", false,
     [](Bait) { return declared(nestedEntities(20, "% ", "&#37;") + "%last;", "<a/>"); }},
    {"one long entity many times", false,
     [](Bait) {
       return declared("<!ENTITY e '" + std::string(500000, 'x') + "'>",
                       "<a>" + repeated("&e;", 1000) + "</a>");
     }},
    {"one long entity many times in an attribute", false,
     [](Bait) {
       return declared("<!ENTITY e '" + std::string(500000, 'x') + "'>",
                       "<a x='" + repeated("&e;", 1000) + "'/>");
     }},
    {"many elements many times", false,
     [](Bait) {
       return declared("<!ENTITY e '" + repeated("<b/>", 125000) + "'>",
                       "<a>" + repeated("&e;", 1000) + "</a>");
     }},
    {"too many short entities", false,
     [](Bait) { return declared("<!ENTITY e 'x'>", "<a>" + repeated("&e;", 1001) + "</a>"); }},
    {"as many short entities as may be", true,
     [](Bait) { return declared("<!ENTITY e 'x'>", "<a>" + repeated("&e;", 1000) + "</a>"); }},
    {"entity of itself", false, [](Bait) { return declared("<!ENTITY e '&e;'>", "<a>&e;</a>"); }},
    {"two entities of each other", false,
     [](Bait) { return declared("<!ENTITY e '&f;'><!ENTITY f '&e;'>", "<a>&e;</a>"); }},
    {"entity of itself in an attribute", false,
     [](Bait) { return declared("<!ENTITY e '&e;'>", "<a x='&e;'/>"); }},
    {"declarations of themselves", false,
     [](Bait) { return declared("<!ENTITY % e '&#37;e;'>%e;", "<a/>"); }},
    {"default attributes on many elements", false,
     [](Bait) {
       std::string list;
       for (int i = 0; i < 5000; ++i) list += " x" + std::to_string(i) + " CDATA 'v'";
       return declared("<!ATTLIST b" + list + ">", "<a>" + repeated("<b/>", 20000) + "</a>");
     }},
    {"attributes declared in vain", false,
     [](Bait) {
       std::string list;
       for (int i = 0; i < 5000; ++i) list += " x" + std::to_string(i) + " CDATA #IMPLIED";
       return declared("<!ATTLIST b" + list + ">", "<a>" + repeated("<b/>", 20000) + "</a>");
     }},
    {"many entities that nobody uses", true,
     [](Bait) {
       std::string list;
       for (int i = 0; i < 20000; ++i) list += "<!ENTITY e" + std::to_string(i) + " 'x'>";
       return declared(list, "<a/>");
     }},

    // How deep, long and many they are.
    {"a million levels", false, [](Bait) { return repeated("<a>", 1000000); }},
    {"a million levels that end", false,
     [](Bait) { return repeated("<a>", 1000000) + repeated("</a>", 1000000); }},
    {"one level too many", false,
     [](Bait) { return repeated("<a>", 1001) + repeated("</a>", 1001); }},
    {"as many levels as may be", true,
     [](Bait) { return repeated("<a>", 1000) + repeated("</a>", 1000); }},
    {"levels in an entity", false,
     [](Bait) {
       return declared("<!ENTITY e '" + repeated("<a>", 600) + repeated("</a>", 600) + "'>",
                       repeated("<a>", 600) + "&e;" + repeated("</a>", 600));
     }},
    {"deep declaration", true,
     [](Bait) {
       return declared("<!ELEMENT a " + repeated("(", 50000) + "b" + repeated(")", 50000) + ">",
                       "<a/>");
     }},
    {"long declaration", true,
     [](Bait) { return declared("<!ELEMENT a (b" + repeated("|b", 20000) + ")>", "<a/>"); }},
    {"40,000 attributes", true, [](Bait) { return "<a" + attributes(40000) + "/>"; }},
    {"40,000 attributes and one again", false,
     [](Bait) { return "<a" + attributes(40000) + " a0=\"v\"/>"; }},
    {"attribute of 10 MB", true,
     [](Bait) { return "<a x='" + std::string(10 * kMegabyte, 'x') + "'/>"; }},
    {"attribute of 10 MB without an end", false,
     [](Bait) { return "<a x='" + std::string(10 * kMegabyte, 'x'); }},
    {"text of 10 MB", true, [](Bait) { return "<a>" + std::string(10 * kMegabyte, 'x') + "</a>"; }},
    {"comment of 10 MB", true,
     [](Bait) { return "<a><!--" + std::string(10 * kMegabyte, 'x') + "--></a>"; }},
    {"section of 10 MB", true,
     [](Bait) { return "<a><![CDATA[" + std::string(10 * kMegabyte, 'x') + "]]></a>"; }},
    {"instruction of 10 MB", true,
     [](Bait) { return "<a><?p " + std::string(10 * kMegabyte, 'x') + "?></a>"; }},
    {"name of 1 MB", true,
     [](Bait) {
       const std::string name(kMegabyte, 'n');
       return "<" + name + "></" + name + ">";
     }},
    {"entity name of 1 MB", false,
     [](Bait) { return "<a>&" + std::string(kMegabyte, 'n') + ";</a>"; }},
    {"many elements", true, [](Bait) { return "<a>" + repeated("<b/>", 300000) + "</a>"; }},
    {"many names", true,
     [](Bait) {
       std::string text = "<a>";
       for (int i = 0; i < 50000; ++i) text += "<n" + std::to_string(i) + "/>";
       return text + "</a>";
     }},
    {"white space alone", false, [](Bait) { return std::string(kMegabyte, ' '); }},
    {"white space before the root", true,
     [](Bait) { return std::string(kMegabyte, '\n') + "<a/>"; }},
    {"opening brackets", false, [](Bait) { return std::string(kMegabyte, '<'); }},
    {"ampersands", false, [](Bait) { return "<a>" + std::string(kMegabyte, '&') + "</a>"; }},
    {"closing tags", false, [](Bait) { return repeated("</a>", 200000); }},
    {"comments without an end", false, [](Bait) { return "<a>" + repeated("<!--", 200000); }},
    {"character references", true, [](Bait) { return "<a>" + repeated("&#65;", 200000) + "</a>"; }},

    // How they are encoded.
    {"UTF-8 mark", true, [](Bait) { return "\xEF\xBB\xBF<a/>"s; }},
    {"UTF-8 mark twice", false, [](Bait) { return "\xEF\xBB\xBF\xEF\xBB\xBF<a/>"s; }},
    {"mark alone", false, [](Bait) { return "\xEF\xBB\xBF"s; }},
    {"UTF-16, little end first", true,
     [](Bait) { return "\xFF\xFE" + inUtf16("<a>text</a>", true); }},
    {"UTF-16, big end first", true,
     [](Bait) { return "\xFE\xFF" + inUtf16("<a>text</a>", false); }},
    {"UTF-16 with the other's mark", false,
     [](Bait) { return "\xFE\xFF" + inUtf16("<a>text</a>", true); }},
    {"UTF-16 of an odd size", false,
     [](Bait) { return "\xFF\xFE" + inUtf16("<a>text</a>", true) + "<"; }},
    {"UTF-16 with half a pair", false,
     [](Bait) { return "\xFF\xFE" + inUtf16("<a>", true) + "\x3D\xD8" + inUtf16("</a>", true); }},
    {"UTF-16 declared, UTF-8 written", false,
     [](Bait) { return "<?xml version='1.0' encoding='UTF-16'?><a/>"s; }},
    {"UTF-8 declared, UTF-16 written", false,
     [](Bait) { return "\xFF\xFE" + inUtf16("<?xml version='1.0' encoding='UTF-8'?><a/>", true); }},
    {"UTF-8 declared, Latin-1 written", false,
     [](Bait) { return "<?xml version='1.0' encoding='UTF-8'?><a>\xE9</a>"s; }},
    {"ASCII declared, more written", false,
     [](Bait) { return "<?xml version='1.0' encoding='US-ASCII'?><a>\xC3\xA9</a>"s; }},
    {"Latin-1", true,
     [](Bait) { return "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>"s; }},
    {"unknown encoding", false, [](Bait) { return "<?xml version='1.0' encoding='8bit'?><a/>"s; }},
    {"encoding without a name", false,
     [](Bait) { return "<?xml version='1.0' encoding=''?><a/>"s; }},
    {"encoding of 1 MB", false,
     [](Bait) {
       return "<?xml version='1.0' encoding='" + std::string(kMegabyte, 'x') + "'?><a/>";
     }},
    {"UTF-7", true, [](Bait) { return "<?xml version='1.0' encoding='UTF-7'?>+ADw-a/+AD4-"s; }},
    {"UTF-32, little end first", true,
     [](Bait) { return "\xFF\xFE\0\0"s + inUtf32("<a/>", true); }},
    {"UTF-32 cut", false,
     [](Bait) { return ("\xFF\xFE\0\0"s + inUtf32("<a/>", true)).substr(0, 18); }},
    {"overlong character", false, [](Bait) { return "<a>\xC0\xAF</a>"s; }},
    {"overlong bracket", false,
     [](Bait) {
       return "\xC0\xBC"
              "a/>"s;
     }},
    {"surrogate in UTF-8", false, [](Bait) { return "<a>\xED\xA0\x80</a>"s; }},
    {"character beyond the last", false, [](Bait) { return "<a>\xF4\x90\x80\x80</a>"s; }},
    {"continuation alone", false, [](Bait) { return "<a>\x80</a>"s; }},
    {"cut character in a text", false, [](Bait) { return "<a>\xE2\x82</a>"s; }},
    {"cut character at the end", false, [](Bait) { return "<a>\xE2\x82"s; }},
    {"cut character and a line end", false, [](Bait) { return "\xCD\n<a/>"s; }},

    // Characters that are none.
    {"NUL in front", false, [](Bait) { return "\0<a/>"s; }},
    {"NUL in a text", false, [](Bait) { return "<a>\0</a>"s; }},
    {"NUL in an attribute", false, [](Bait) { return "<a x='\0'/>"s; }},
    {"NUL in a name", false, [](Bait) { return "<a\0b/>"s; }},
    {"NUL behind the root", true, [](Bait) { return "<a/>\0"s; }},
    {"more behind a NUL", false, [](Bait) { return "<a/>\0<b/>"s; }},
    {"reference to NUL", false, [](Bait) { return "<a>&#0;</a>"s; }},
    {"control character", false, [](Bait) { return "<a>\x01</a>"s; }},
    {"control character in an attribute", false, [](Bait) { return "<a x='\x1f'/>"s; }},
    {"reference to a control character", false, [](Bait) { return "<a>&#x1;</a>"s; }},
    {"reference to a surrogate", false, [](Bait) { return "<a>&#xD800;</a>"s; }},
    {"reference beyond the last character", false, [](Bait) { return "<a>&#x110000;</a>"s; }},
    {"reference beyond any number", false, [](Bait) { return "<a>&#99999999999999999999;</a>"s; }},
    {"reference without a number", false, [](Bait) { return "<a>&#;</a>"s; }},
    {"escape sequence", false, [](Bait) { return "<a>\x1b[2J</a>"s; }},
    {"character that is no character", false, [](Bait) { return "<a>\xEF\xBF\xBF</a>"s; }},

    // Versions.
    {"XML 1.1", true, [](Bait) { return "<?xml version='1.1'?><a>&#x1;</a>"s; }},
    {"XML 1.1 with a NUL", false, [](Bait) { return "<?xml version='1.1'?><a>&#0;</a>"s; }},
    {"XML 1.1 with a control character", false,
     [](Bait) { return "<?xml version='1.1'?><a>\x01</a>"s; }},
    {"XML 1.2", false, [](Bait) { return "<?xml version='1.2'?><a/>"s; }},
    {"XML 2.0", false, [](Bait) { return "<?xml version='2.0'?><a/>"s; }},
    {"version of 1 MB", false,
     [](Bait) { return "<?xml version='" + std::string(kMegabyte, '1') + "'?><a/>"; }},
    {"declaration alone", false, [](Bait) { return "<?xml version='1.0'?>"s; }},
    {"declaration behind the start", false, [](Bait) { return " <?xml version='1.0'?><a/>"s; }},

    // Where they begin and end.
    {"empty", false, [](Bait) { return ""s; }},
    {"text alone", false, [](Bait) { return "no document"s; }},
    {"text before the root", false, [](Bait) { return "text<a/>"s; }},
    {"text behind the root", false, [](Bait) { return "<a/>text"s; }},
    {"two roots", false, [](Bait) { return "<a/><b/>"s; }},
    {"entity behind the root", false, [](Bait) { return declared("<!ENTITY e 'x'>", "<a/>&e;"); }},
    {"section behind the root", false, [](Bait) { return "<a/><![CDATA[x]]>"s; }},
    {"document type behind the root", false, [](Bait) { return "<a/><!DOCTYPE a>"s; }},
    {"two document types", false, [](Bait) { return "<!DOCTYPE a><!DOCTYPE a><a/>"s; }},
    {"document type alone", false, [](Bait) { return "<!DOCTYPE a [<!ENTITY e 'x'>]>"s; }},
    {"document type without an end", false, [](Bait) { return "<!DOCTYPE a [<!ENTITY e '"s; }},
    {"tag without an end", false, [](Bait) { return "<a"s; }},
    {"root without an end", false, [](Bait) { return "<a>"s; }},
    {"comment without an end", false, [](Bait) { return "<a><!-- "s; }},
    {"section without an end", false, [](Bait) { return "<a><![CDATA[ "s; }},
    {"instruction without an end", false, [](Bait) { return "<a><?p "s; }},
    {"tags crossed", false, [](Bait) { return "<a><b></a></b>"s; }},
    {"attribute twice", false, [](Bait) { return "<a x='1' x='2'/>"s; }},
    {"attribute without quotes", false, [](Bait) { return "<a x=1/>"s; }},
    {"bracket in an attribute", false, [](Bait) { return "<a x='<'/>"s; }},
    {"undeclared entity", false, [](Bait) { return "<a>&nbsp;</a>"s; }},
    {"entity that is half an element", false,
     [](Bait) { return declared("<!ENTITY e '<b>'>", "<a>&e;</b></a>"); }},
    {"undeclared prefix", true, [](Bait) { return "<p:a xmlns:q='' p:x='1'/>"s; }},
    {"many colons", true, [](Bait) { return "<a:b:c ::='1'/>"s; }},
};

}  // namespace

const std::vector<HostileDocument>& hostileDocuments() { return kDocuments; }
