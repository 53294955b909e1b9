// GrabRun: one run of `koro grab` with the camera, from its opening to the summary.
//
// Made and used by the command, once, on the main thread.
#pragma once

#include "tools/koro/camera_connection.h"
#include "tools/koro/camera_link.h"
#include "tools/koro/chunk_table.h"
#include "tools/koro/closing.h"
#include "tools/koro/discovery.h"
#include "tools/koro/grab_output.h"
#include "tools/koro/grab_session.h"
#include "tools/koro/interrupt.h"
#include "tools/koro/picture_saver.h"
#include "tools/koro/progress.h"

#include <atomic>
#include <exception>
#include <memory>
#include <optional>
#include <string>

namespace koro::tool
{

struct GrabOptions
{
    GrabSettings settings;
    std::string output; // the folder
    std::string prefix; // of the names of the files
    bool reconnect = false;
    bool json = false;
};

class GrabRun
{
public:
    // Opens the camera. Throws koro::Error, or ToolError for what the tool refuses.
    GrabRun(const GrabOptions& options, const Discovery& discovery, const CameraChoice& choice, Interrupt& interrupt);

    // Takes the pictures, closes the camera, prints the summary and what went wrong. Returns the exit status. Does not
    // return when a producer does not: then the process ends with that status.
    int Run();

private:
    void Stream();
    void BeginTable();
    std::unique_ptr<GrabSession> OpenAgain();
    void Close();
    void FinishFiles();
    void PrintSummary();
    int Conclude();
    int ReportEnd();
    int GiveUp();

    const GrabOptions options;
    const std::string producer; // its file
    Interrupt& interrupt;
    ClosingReport closing;
    bool closesLostCamera = false;
    std::atomic<bool> cameraAnswers{true}; // false while it is asked, for the thread that gives up
    bool isGivenUp = false; // a call has not returned

    std::unique_ptr<CameraConnection> connection;
    std::unique_ptr<CameraLink> link; // with --reconnect
    std::unique_ptr<GrabSession> session;

    std::optional<ChunkTable> table;
    std::optional<Progress> progress;
    std::optional<PictureSaver> saver;
    std::optional<GrabOutput> output;
    GrabEnd end = GrabEnd::Finished;
    std::exception_ptr cause; // what ended the grab before its time
};

} // namespace koro::tool
