// A child that writes a report and can be killed or starved while it does:
//     report-writer REPORT json|raw once|endless SIZE...
// makes one commit of one message for each size, the text that many bytes long, the codes "V1", "V2" and so on, and
// writes one line for each to standard error: "ok" or what went wrong.

#include "report/Exceptions.h"
#include "report/ReportOutputs.h"

#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

using namespace OrvlogConverter;

namespace {

void CommitMessage(ReportOutput& output, std::size_t number, std::size_t size) {
    ReportMessage message;
    message.code = "V" + std::to_string(number);
    message.message.assign(size, 'x');
    message.positions.resize(1);
    output.Write(message);
    try {
        output.Commit();
        std::cerr << "ok\n" << std::flush;
    } catch (const FilesystemException& error) {
        std::cerr << error.what() << '\n' << std::flush;
    }
}

void WriteReport(const std::vector<std::string>& arguments) {
    std::unique_ptr<ReportOutput> output;
    if (arguments.at(1) == "json") {
        output = std::make_unique<JsonOutput>(arguments[0]);
    } else {
        output = std::make_unique<RawOutput>(arguments[0]);
    }
    output->Begin();
    std::size_t number = 0;
    do {
        for (std::size_t index = 3; index < arguments.size(); ++index) {
            CommitMessage(*output, ++number, std::stoul(arguments[index]));
        }
    } while (arguments.at(2) == "endless");
    output->End();
}

} // namespace

int main(int count, char** words) {
    try {
        WriteReport({words + 1, words + count});
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
