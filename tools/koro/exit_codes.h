// Exit statuses of the tool; docs/tool.md lists them for the user.
#pragma once

namespace koro::tool
{

constexpr int exitSuccess = 0;
constexpr int exitFailure = 1;        // the library or a producer reported an error
constexpr int exitUsage = 2;          // wrong command line
constexpr int exitNoSuchCamera = 3;   // the name fits no camera, or more than one
constexpr int exitNoUsableCamera = 4; // `koro doctor` found none
constexpr int exitFramesMissing = 5;  // `koro grab` ended with fewer pictures than asked for
constexpr int exitNoSuchFeature = 6;  // the module has no feature of that name
constexpr int exitDifferent = 7;      // `koro settings diff` found differences
constexpr int exitInterrupted = 130;  // Ctrl-C, as a shell reports it
constexpr int exitBrokenPipe = 141;   // the reader of standard output has gone, as a shell reports it

} // namespace koro::tool
