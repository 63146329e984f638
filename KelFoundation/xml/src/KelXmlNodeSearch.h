// Finds elements by name.
#pragma once

#include <string_view>

#include "DOM_NodeList.h"

struct KelXmlNode;

// The elements named `name` below `top`, in document order; "*" names all.
DOM_NodeList ElementsBelow(KelXmlNode* top, std::string_view name);
