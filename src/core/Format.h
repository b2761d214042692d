#pragma once

#include <string>

namespace velder {

// printf-style formatting into a std::string, for log lines and page texts.
std::string format(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

} // namespace velder
