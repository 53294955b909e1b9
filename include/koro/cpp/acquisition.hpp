// Acquisition in the order that cameras expect: the stream starts first, then the camera; the camera stops first, then
// the stream.
//
// Programs include <koro/koro.hpp>, which includes this header.
#ifndef KORO_CPP_ACQUISITION_HPP
#define KORO_CPP_ACQUISITION_HPP

#include <koro/cpp/nodes.hpp>
#include <koro/cpp/streams.hpp>
#include <koro/cpp/support.hpp>
#include <koro/cpp/tree.hpp>
#include <koro/koro.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace koro
{

namespace detail
{

// The node "PayloadSize" if the camera has it and it can be read; otherwise empty.
inline IntegerNode ReadablePayloadSize(NodeMap camera)
{
    const Node node = camera ? camera.TryNode("PayloadSize") : Node();
    return node && node.Type() == KORO_NODE_TYPE_INTEGER && node.IsReadable() ? node.ToInteger() : IntegerNode();
}

} // namespace detail

// Returns the size of a frame in bytes. It is the payload size of the stream if the stream defines it; otherwise the
// value of the camera's node "PayloadSize"; otherwise the payload size of the stream nevertheless, since some producers
// do not report whether the stream defines it. `camera` may be empty, for a camera without features. Throws the failure
// of the stream if there is no node either.
inline size_t FrameSize(DataStreamView stream, NodeMap camera)
{
    KORO_Bool8 defines = 0;
    const bool known = KORO_DataStream_GetDefinesPayloadSize(stream.Get(), &defines) == KORO_RETURN_CODE_SUCCESS;
    size_t ofStream = 0;
    if (known && defines != 0 && KORO_DataStream_GetPayloadSize(stream.Get(), &ofStream) == KORO_RETURN_CODE_SUCCESS)
        return ofStream;
    const IntegerNode node = detail::ReadablePayloadSize(camera);
    if (!node) return stream.PayloadSize();
    const int64_t size = node.Value(CachePolicy::IgnoreCache);
    if (size < 0)
        throw Error(KORO_RETURN_CODE_ERROR, "The node PayloadSize claims " + std::to_string(size) + " bytes!");
    return static_cast<size_t>(size);
}

// The reason why a wait for a buffer may have returned nothing.
enum class NoFrameReason
{
    CameraGone,    // the camera does not respond
    NotStarted,    // the stream has not been started, or has stopped by itself
    NothingQueued, // no buffer is queued
    NoFrameSent,   // none of these: the camera waits for a trigger, the exposure takes longer, or frames are lost
};

inline const char* TextOf(NoFrameReason reason) noexcept
{
    switch (reason)
    {
    case NoFrameReason::CameraGone:
        return "The camera does not answer any more.";
    case NoFrameReason::NotStarted:
        return "The acquisition is not started.";
    case NoFrameReason::NothingQueued:
        return "No buffer is queued.";
    case NoFrameReason::NoFrameSent:
        return "The camera answers, but no frame came in time: it may wait for a trigger.";
    }
    return "";
}

namespace detail
{

// Returns `otherwise` when the producer does not have the information.
template <typename Question>
bool Answered(const Question& question, bool otherwise)
{
    try
    {
        return question();
    }
    catch (const Error&)
    {
        return otherwise;
    }
}

// A refusal counts as a response of the camera, too.
inline bool Answers(RemoteDevice camera)
{
    try
    {
        camera.Port().Read(0, 4);
        return true;
    }
    catch (const Error& error)
    {
        return error.Code() != KORO_RETURN_CODE_IO_ERROR && error.Code() != KORO_RETURN_CODE_TIMEOUT &&
               error.Code() != KORO_RETURN_CODE_ERROR && error.Code() != KORO_RETURN_CODE_INVALID_HANDLE;
    }
}

} // namespace detail

// Finds out the reason after a timeout. It first reads the first register of the camera; for a lost camera this takes
// until the transfer fails. Then it queries the state of the stream. Information that the stream does not have counts
// as in order.
inline NoFrameReason WhyNoFrame(DataStreamView stream, RemoteDevice camera)
{
    if (!detail::Answers(camera)) return NoFrameReason::CameraGone;
    if (!detail::Answered([&] { return stream.IsGrabbing(); }, true)) return NoFrameReason::NotStarted;
    if (!detail::Answered([&] { return stream.NumBuffersQueued() > 0; }, true)) return NoFrameReason::NothingQueued;
    return NoFrameReason::NoFrameSent;
}

// A running acquisition. Announce and queue buffers before. It holds handles only: the owner of the stream may be
// moved, and after the end of the stream the calls fail. Use it on one thread; other threads may wait for buffers.
class Acquisition
{
public:
    // Calls DSStartAcquisition, sets TLParamsLocked to 1 and executes AcquisitionStart. Nodes that the camera does not
    // have are left out, so with an empty `camera` only the first step remains. When a step fails, the steps before it
    // are undone and the failure is thrown. A temporary stream is refused by the compiler.
    Acquisition(DataStreamView dataStream, NodeMap camera, uint64_t numToAcquire = infinite)
        : stream(dataStream), nodes(camera)
    {
        stream.StartAcquisition(numToAcquire);
        streaming = true;
        try
        {
            locked = SetLocked(1);
            started = Execute("AcquisitionStart");
        }
        catch (...)
        {
            const std::exception_ptr failure = std::current_exception();
            TakeBack();
            std::rethrow_exception(failure);
        }
    }
    Acquisition(const Acquisition&) = delete;
    Acquisition& operator=(const Acquisition&) = delete;
    // Stops the acquisition and ignores failures.
    ~Acquisition() { TakeBack(); }

    // Executes AcquisitionStop, calls DSStopAcquisition and sets TLParamsLocked to 0. Each step is attempted even if
    // one before it fails; the first failure is thrown. A second call does nothing.
    void Stop()
    {
        if (const std::exception_ptr failure = TakeBack()) std::rethrow_exception(failure);
    }

private:
    std::exception_ptr TakeBack() noexcept
    {
        std::exception_ptr failure;
        const auto attempt = [&failure](auto&& step) {
            try
            {
                step();
            }
            catch (...)
            {
                if (!failure) failure = std::current_exception();
            }
        };
        if (std::exchange(started, false)) attempt([this] { Execute("AcquisitionStop"); });
        if (std::exchange(streaming, false)) attempt([this] { stream.StopAcquisition(); });
        if (std::exchange(locked, false)) attempt([this] { SetLocked(0); });
        return failure;
    }
    // The node if the camera has it, otherwise empty.
    Node Find(const std::string& name, KORO_NodeType type) const
    {
        const Node node = nodes ? nodes.TryNode(name) : Node();
        return node && node.Type() == type && node.IsImplemented() ? node : Node();
    }
    bool Execute(const std::string& command) const
    {
        const Node node = Find(command, KORO_NODE_TYPE_COMMAND);
        if (node) node.ToCommand().Execute();
        return static_cast<bool>(node);
    }
    bool SetLocked(int64_t value) const
    {
        const Node node = Find("TLParamsLocked", KORO_NODE_TYPE_INTEGER);
        if (!node || !node.IsWritable()) return false;
        node.ToInteger().SetValue(value);
        return true;
    }

    DataStreamView stream;
    NodeMap nodes;
    bool streaming = false;
    bool locked = false;
    bool started = false;
};

} // namespace koro

#endif
