// A thread that each start of the producer leaves behind, as some producers' transport libraries do.
//
// No close ends it. The destructor of a static object ends and joins the thread of the last start; the others run on
// until the process ends, in the code of this file.
#pragma once

namespace scripted
{

void StartLingeringThread();

} // namespace scripted
