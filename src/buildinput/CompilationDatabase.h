#pragma once

#include "buildinput/CommandStringSplitter.h"
#include "buildinput/InvocationCollector.h"

#include <istream>
#include <string>
#include <vector>

namespace Orvanta {

/// Reads a compilation database and hands each entry to the collector while the document is being read: it is never
/// whole in memory. False when the file can't be opened.
/// \throws NoCompilerInvocationsFound for a database without entries, and the JSON library's exceptions
bool ReadCompilationDatabase(const std::string& path, InvocationCollector& collector);

/// The same from an open stream. What is wrong with it is told in the collector's log first, by its path and entry.
void ReadDatabaseFrom(std::istream& input, const std::string& path, InvocationCollector& collector);

/// The same by the rules of either system. When it throws one of the library's exceptions, `fault` is what is wrong and
/// where, to stand behind the file's name.
void ParseCompilationDatabase(std::istream& input, CommandStringRules rules, InvocationCollector& collector,
                              std::string* fault = nullptr);

/// Writes the units as a compilation database with "arguments", "directory", "file" and, where there are any,
/// "environment" members. An invocation of several sources is one entry: read back, it gives the same units.
/// \throws ZelmException with the path and the system's reason
void WriteCompilationDatabase(const std::string& path, const std::vector<CompileCommand>& units);

} // namespace Orvanta
