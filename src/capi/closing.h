// Closing: how objects that have handles end.
//
// An end waits for the monitors and listeners of the ended objects, and for a thread that holds the lock of a node map
// from which an attached buffer must be removed; it waits for nothing else. A running call keeps its object and, from
// the end on, all parents of the object: so the last thread that leaves closes children before parents and the producer
// last. See docs/decisions/0021-the-last-one-out-closes.md.
#pragma once

#include "base/ending_scope.h"
#include "base/hold.h"
#include "base/instance.h"

#include <memory>

namespace koro::internal
{

// Ends the object of this hold, with all its handles and those below. Throws the standard deadlock error, and ends
// nothing, in a callback of a monitor or listener that it would have to wait for.
void EndObject(std::shared_ptr<Hold> hold);

// The first half of an end, for any number of objects: refuses as described above, ends the waits of running calls, and
// ends the threads of monitors and listeners.
void EndActivity(const Instance::Holds& roots);

// The second half, for the library's close, which empties the tables while this object exists: hides all entries from
// other threads and links running calls to their parents.
class EndOfAll
{
public:
    explicit EndOfAll(const Instance::Holds& roots);

private:
    const EndingScope scope;
};

} // namespace koro::internal
