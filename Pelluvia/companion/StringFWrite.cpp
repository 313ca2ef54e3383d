#include <Pelluvia/companion/Companion.h>

#include <Pelluvia/platform/OutputFile.h>

namespace pelluvia {

void SkerryCFStringFWrite(OutputFile &stream, std::string_view string) {
    stream.write(string);
}

} // namespace pelluvia
