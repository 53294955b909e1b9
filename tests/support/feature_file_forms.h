// Feature files that every reader of the text form must read alike; see docs/decisions/0022.
#pragma once

namespace koro::test
{

struct FeatureFileForm
{
    const char* lines;   // behind the first line
    const char* records; // as the writers write them
};

inline constexpr FeatureFileForm featureFileForms[] = {
    {"", ""},
    {"A\t1\nB\t{S=x\tT=y}\tvalue\n", "A\t1\nB\t{S=x\tT=y}\tvalue\n"},
    {"A\t1\r\nB\t2\r\n", "A\t1\nB\t2\n"},
    {"# comment\n#\nA\t1\n# between\nB\t2\n# end\n", "A\t1\nB\t2\n"},
    {"A\t1\n\n\nB\t2\n", "A\t1\nB\t2\n"},
    {"  A \t 1 \n", "A\t 1 \n"},
    {"A\t1\nB\t2", "A\t1\nB\t2\n"},
    {"A\ta\tb\nB\ta=b\nC\ta{b}\nD\t#d\n", "A\ta\tb\nB\ta=b\nC\ta{b}\nD\t#d\n"},
    {"A\t{S=a=b}\t1\n", "A\t{S=a=b}\t1\n"},
    {"A\t{S=\tT= }\t{1}\n", "A\t{S=\tT= }\t{1}\n"},
};

} // namespace koro::test
