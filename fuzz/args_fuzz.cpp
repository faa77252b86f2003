// The argument walker over argument vectors cut from the fuzzer's bytes.
#include <dunx/DUNXArgs.h>

#include "FuzzInput.h"

#include <cstdint>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    dunx::fuzz::FuzzInput input(data, size);
    std::vector<std::string> texts;
    while (!input.empty() && texts.size() < 32)
        texts.push_back(input.text(24));
    std::vector<char*> argv;
    for (std::string& text : texts)
        argv.push_back(text.data());
    argv.push_back(nullptr);
    char optionA[] = "-c", optionB[] = "-O", optionC[] = "--unit";
    char* known[] = {optionA, optionB, optionC};
    DUNXArgs args(static_cast<int>(texts.size()), argv.data());
    for (int step = 0; step < 64; ++step) {
        int index = -1;
        char* argument = nullptr;
        switch (step % 3) {
        case 0:
            args.GetNextArg();
            break;
        case 1:
            args.GetNextOption(3, known, &index);
            break;
        default:
            args.GetOptionArgument(&argument);
            break;
        }
    }
    return 0;
}
