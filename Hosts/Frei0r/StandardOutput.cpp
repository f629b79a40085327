#include "Hosts/Frei0r/StandardOutput.h"

#include <iostream>
#include <streambuf>

namespace Ombrique::Hosts {

namespace {

thread_local bool isDiverted = false;

/// Has no buffer of its own, so that it is as safe to share among threads as those that it leads to.
class SplitByThread : public std::streambuf {
public:
    explicit SplitByThread(std::streambuf* others) : mOthers(others) {}

protected:
    int_type overflow(int_type letter) override {
        if (traits_type::eq_int_type(letter, traits_type::eof()))
            return traits_type::not_eof(letter);
        return target().sputc(traits_type::to_char_type(letter));
    }
    std::streamsize xsputn(const char* text, std::streamsize length) override { return target().sputn(text, length); }
    int sync() override { return target().pubsync(); }

private:
    std::streambuf& target() { return isDiverted ? *std::cerr.rdbuf() : *mOthers; }

    std::streambuf* mOthers;
};

} // namespace

void divertStandardOutputOfThisThread() {
    // Never deleted: std::cout is flushed at the very end of the process.
    static std::streambuf* const before = std::cout.rdbuf(new SplitByThread(std::cout.rdbuf()));
    (void)before;
    isDiverted = true;
}

} // namespace Ombrique::Hosts
