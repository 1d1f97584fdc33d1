// Command lines for people who read German: the option parser's words in their language. For programs and tools only;
// the header that it needs is a large one.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace zek {

// The headings of the help. Before any option or command is added.
void SprichDeutsch(CLI::App& aufruf);

// What is wrong with a command line.
std::string AufDeutsch(const CLI::ParseError& fehler, const CLI::App& aufruf);

}  // namespace zek
