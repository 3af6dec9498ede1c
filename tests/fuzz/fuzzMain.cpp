// Entry of a fuzzer; TOLM_FUZZ_TARGET names the function that it feeds.

#include "tests/fuzz/targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    tolm::fuzz::TOLM_FUZZ_TARGET({data, size});
    return 0;
}
