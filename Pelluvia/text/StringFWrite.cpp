// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Companion.h>

#include <Pelluvia/system/OutputFile.h>

namespace pelluvia {

void SkerryCFStringFWrite(OutputFile &stream, std::string_view string) {
    stream.write(string);
}

} // namespace pelluvia
