// A shared object with the right ending and none of the functions.
extern "C" __attribute__((visibility("default"))) int NothingOfTheStandard()
{
    return 0;
}
