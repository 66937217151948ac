#include "platform/BlockReader.h"

#include "platform/Exceptions.h"

namespace Orvanta {

bool BlockReader::ReadBlock() {
    input_.read(block_.data(), static_cast<std::streamsize>(block_.size()));
    if (input_.bad()) {
        throw ZelmException("the file can't be read to its end");
    }
    next_ = block_.data();
    end_ = next_ + input_.gcount();
    return next_ != end_;
}

} // namespace Orvanta
