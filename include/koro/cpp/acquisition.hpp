// Streaming as cameras want it: the stream starts first, then the camera; the camera stops first, then the stream.
//
// Included by <koro/koro.hpp>, which is the header for programs.
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

// The node "PayloadSize", if the camera has it and it can be read; else empty.
inline IntegerNode ReadablePayloadSize(NodeMap camera)
{
    const Node node = camera ? camera.TryNode("PayloadSize") : Node();
    return node && node.Type() == KORO_NODE_TYPE_INTEGER && node.IsReadable() ? node.ToInteger() : IntegerNode();
}

} // namespace detail

// Bytes of a frame: what the stream says if it defines the size, else what the camera's node "PayloadSize" says, else
// what the stream says all the same. Producers are known that do not answer it. `camera` may be empty, for a camera
// without features. Throws the stream's refusal when there is no node to ask.
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

// Why a wait for a buffer may have ended with nothing.
enum class NoFrameReason
{
    CameraGone,    // the camera does not answer
    NotStarted,    // the stream has not been started, or has stopped by itself
    NothingQueued, // no buffer is there to be filled
    NoFrameSent,   // none of these: the camera waits for a trigger, exposes for longer, or its frames get lost
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

// `otherwise` where the producer does not answer.
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

// A refusal is an answer too.
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

// Asks camera and stream after a time-out: the camera for its first register, which takes as long as a camera that has
// gone takes to fail, then the stream for its state. What the stream does not answer counts as in order.
inline NoFrameReason WhyNoFrame(DataStreamView stream, RemoteDevice camera)
{
    if (!detail::Answers(camera)) return NoFrameReason::CameraGone;
    if (!detail::Answered([&] { return stream.IsGrabbing(); }, true)) return NoFrameReason::NotStarted;
    if (!detail::Answered([&] { return stream.NumBuffersQueued() > 0; }, true)) return NoFrameReason::NothingQueued;
    return NoFrameReason::NoFrameSent;
}

// A running acquisition. Buffers are announced and queued before. It holds handles: the owner of the stream may move,
// and a stream that has ended makes its calls fail. One thread, but for waits.
class Acquisition
{
public:
    // DSStartAcquisition, TLParamsLocked to 1, AcquisitionStart. Nodes that the camera does not have are left out, and
    // with an empty `camera` both. When a step fails, those before it are taken back, and its failure is thrown.
    // A stream that is a temporary is refused by the compiler.
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
    // Stops; failures are swallowed.
    ~Acquisition() { TakeBack(); }

    // AcquisitionStop, DSStopAcquisition, TLParamsLocked to 0. Each is tried regardless of those before it; the first
    // failure is thrown. A second call does nothing.
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
    // The node if the camera has it, else empty.
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
