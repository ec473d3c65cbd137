// The page's own texts, and the program's words in the language of the messages.
#pragma once

#include "cli/kinds.h"
#include "cli/page/writer.h"

#include <string>
#include <string_view>
#include <vector>

namespace cli::page {

// The object of the page's own messages by id, their arguments as "%1" to "%3".
void writeTexts(Writer& writer);
// The id "page_" + `kind` + "_" + `words` in lower case, everything but letters and digits as "_".
std::string messageOf(std::string_view kind, const std::string& words);
// That message; the words themselves where there is none.
std::string translateWords(std::string_view kind, const std::string& words);
// The message `id`, or `fallback` where there is none; "%1" to "%3" become the arguments.
std::string say(const std::string& id, std::string_view fallback, const std::vector<std::string>& arguments);
// The phrases one after another.
std::string say(const std::vector<Phrase>& phrases);

}  // namespace cli::page
