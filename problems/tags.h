// Tags of problems, kept in the language of the user where the tag table knows them.
#pragma once

#include "core/messages.h"

#include <set>
#include <string>
#include <string_view>

namespace quillmere {

struct TChessProblem;

// The tag in the language, if it is known under its form in another one; else the tag itself.
std::string TranslateTag(std::string_view tag, ELanguage language);

// Translates the tags of the problem, and adds each, translated or not, to allTags. Two tags may
// become one; the one that vanishes is entered in the problem's lostBySave.
void NormaliseTags(TChessProblem& problem, ELanguage language, std::set<std::string>& allTags);

}  // namespace quillmere
