#include "platform/Log.h"

#include "platform/Console.h"
#include "platform/Exceptions.h"
#include "platform/Files.h"

namespace Orvanta {

struct Log::File {
    OutputFile output;
    bool isBroken = false;

    // A log that can't be written any more, on a full disk for example, is given up; the run goes on.
    void Write(std::string_view text) {
        if (isBroken) {
            return;
        }
        try {
            output.Append(text);
        } catch (const ZelmException& error) {
            isBroken = true;
            // Told once: a line for every line that is lost would bury the rest.
            WriteMessage("The log ends here: " + std::string(error.what()) + '\n');
        }
    }
};

Log::Log(Verbosity verbosity) : verbosity_(verbosity) {}

Log::~Log() = default;

void Log::KeepForFile() {
    kept_.emplace();
}

void Log::OpenFile(const std::string& path) {
    file_ = std::make_unique<File>(File{OutputFile(path, OutputFile::Mode::Replace)});
    if (kept_) {
        file_->Write(*kept_);
        kept_.reset();
    }
}

// The lock is held.
void Log::WriteToFile(std::string_view text) {
    if (file_ != nullptr) {
        file_->Write(text);
    } else if (kept_) {
        *kept_ += text;
    }
}

void Log::Line(std::string_view text) {
    Text(std::string(text) += '\n');
}

void Log::VerboseLine(std::string_view text) {
    if (!IsVerbose()) {
        return;
    }
    const std::string line = std::string(text) += '\n';
    // Then it goes to both targets, like any other text; else to the file alone.
    if (verbosity_ == Verbosity::Verbose) {
        Text(line);
        return;
    }
    const std::lock_guard lock(mutex_);
    WriteToFile(line);
}

// One lock for both targets: lines stand in the same order on both.
void Log::Text(std::string_view text) {
    const std::lock_guard lock(mutex_);
    WriteMessage(text);
    WriteToFile(text);
}

bool Log::IsVerbose() const noexcept {
    return verbosity_ == Verbosity::Verbose || file_ != nullptr || kept_;
}

} // namespace Orvanta
