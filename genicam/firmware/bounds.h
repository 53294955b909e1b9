// The bounds beyond which an update file is refused, and the values that the standard leaves open.
#pragma once

#include <Base/GCNamespace.h>
#include <stddef.h>
#include <stdint.h>

namespace GENAPI_NAMESPACE::runtime
{

const size_t maxUpdateFileSize = 512u << 20; // bytes, as all sizes here
const size_t maxControlFileSize = 16u << 20;
const size_t maxControlTextSize = 32u << 20; // all texts and attributes, entities expanded
const size_t maxControlElements = 100000;
const size_t maxControlPatterns = 5000;  // each search with one may take some 10 ms
const size_t maxUploadSize = 512u << 20; // of all files of one procedure together, in a verification of all procedures
const size_t maxExpansion = 200;         // times, for entries that are not small
const size_t smallEntrySize = 1u << 20;  // expands at any rate
const size_t maxPatternSize = 4096;
const size_t maxMatchedTextSize = 4096;
const uint32_t patternSteps = 5000000; // one search may take about so many
const uint32_t patternMemory_KiB = 20 << 10;

const uint32_t checkDuration_ms = 10;          // of the two steps that the control file does not name
const uint32_t executionLimit_ms = 60000;      // of a command whose step names no limit
const uint32_t fileOperationLimit_ms = 600000; // devices check a whole image while they close the file
const uint32_t shortestPause_us = 50; // between two questions to a device that is at work; each is twice the former
const uint32_t longestPause_us = 5000;
const size_t uploadReportSize = 64u << 10; // an upload reports its progress after this many bytes
const char* const unknownExceptionText = "Unknown exception";

} // namespace GENAPI_NAMESPACE::runtime
