// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/StandardOutput.h>

#include <tools/pelluvia/terminal/Messages.h>

namespace pelluvia::host {

StandardOutput::StandardOutput() : file_(OutputFile::open("/dev/stdout", failure_)) {}

void StandardOutput::write(std::string_view text) {
    if (file_ != nullptr) {
        file_->write(text);
    }
}

void StandardOutput::flush() {
    if (file_ != nullptr) {
        file_->flush();
    }
}

bool StandardOutput::close() {
    if (file_ != nullptr) {
        failure_ = file_->close();
    }
    if (failure_) {
        complain("cannot write standard output: " + failure_.message());
    }
    return !failure_;
}

} // namespace pelluvia::host
