// TreeTest: a scripted producer and the library with a tree that is open down to the stream.
#pragma once

#include "tests/boundary/outputs.h"
#include "tests/support/boundary.h"
#include "tests/support/scripted_producer.h"

#include <gtest/gtest.h>

namespace koro::test
{

class TreeTest : public testing::Test
{
protected:
    // Reversed when they go: the producer's journal outlives the library's use of it.
    const ScriptedProducer producer;
    const KoroLibrary library;
    OpenTree tree{producer.Path()};
};

} // namespace koro::test
