#include "tools/koro/shell_word.h"

namespace koro::tool
{

std::string ShellWord(const std::string& word)
{
    static const char* const plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+.,:/@%=";
    if (!word.empty() && word.front() != '-' && word.find_first_not_of(plain) == word.npos) return word;
    std::string quoted = "'";
    for (const char c : word)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

} // namespace koro::tool
