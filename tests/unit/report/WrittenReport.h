#pragma once

#include "platform/Environment.h"
#include "platform/Process.h"
#include "report/RawLine.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <string_view>

namespace OrvlogConverter {

/// A child that writes a report in a folder: report-writer, or what starts it.
struct Writer {
    Writer(const Orvanta::TestFolder& folder, const Orvanta::Arguments& command)
        : process(command, folder.Path(), Orvanta::OwnEnvironmentBlock(),
                  Orvanta::MakeRedirectToStringProcessor(standardOutput),
                  Orvanta::MakeRedirectToStringProcessor(standardError)) {}

    std::string standardOutput;
    std::string standardError;
    Orvanta::Process process;
};

/// The codes in the report, "V1 V2 ..."; fails when the report is not whole.
inline std::string CodesIn(const std::string& report, bool isJson) {
    std::string codes;
    if (isJson) {
        const auto document = nlohmann::json::parse(report);
        for (const auto& message : document.at("warnings")) {
            codes += message.at("code").get<std::string>() + " ";
        }
        return codes;
    }
    EXPECT_TRUE(report.empty() || report.back() == '\n');
    for (std::size_t begin = 0, end = 0; (end = report.find('\n', begin)) != std::string::npos; begin = end + 1) {
        codes += ReadRawLine(std::string_view(report).substr(begin, end - begin)).code + " ";
    }
    return codes;
}

} // namespace OrvlogConverter
