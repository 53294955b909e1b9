// Streaming as cameras want it: the stream starts first, then the camera; the camera stops first, then the stream.
//
// Included by <koro/koro.hpp>, which is the header for programs.
#ifndef KORO_CPP_ACQUISITION_HPP
#define KORO_CPP_ACQUISITION_HPP

#include <koro/koro.hpp>

#include <exception>

namespace koro
{

// Bytes of a frame: what the stream says if it defines the size, else what the camera's node "PayloadSize" says, else
// what the stream says all the same. `camera` may be empty, for a camera without features. Throws the last refusal.
inline size_t FrameSize(const DataStream& stream, NodeMap camera)
{
    KORO_Bool8 defines = 0;
    const bool known = KORO_DataStream_GetDefinesPayloadSize(stream.Get(), &defines) == KORO_RETURN_CODE_SUCCESS;
    if (!camera || (known && defines != 0)) return stream.PayloadSize();
    const Node node = camera.TryNode("PayloadSize");
    if (!node || node.Type() != KORO_NODE_TYPE_INTEGER || !node.IsReadable()) return stream.PayloadSize();
    const int64_t size = node.ToInteger().Value(CachePolicy::IgnoreCache);
    if (size < 0)
        throw Error(KORO_RETURN_CODE_ERROR, "The node PayloadSize claims " + std::to_string(size) + " bytes!");
    return static_cast<size_t>(size);
}

// A running acquisition. Buffers are announced and queued before; both arguments outlive it. One thread, but for waits.
class Acquisition
{
public:
    // DSStartAcquisition, TLParamsLocked to 1, AcquisitionStart. Nodes that the camera does not have are left out, and
    // with an empty `camera` both. When a step fails, those before it are taken back, and its failure is thrown.
    Acquisition(const DataStream& dataStream, NodeMap camera, uint64_t numToAcquire = infinite)
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

    // AcquisitionStop, DSStopAcquisition, TLParamsLocked to 0. Each is tried whatever became of those before it; the
    // first failure is thrown. A second call does nothing.
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

    const DataStream& stream;
    NodeMap nodes;
    bool streaming = false;
    bool locked = false;
    bool started = false;
};

} // namespace koro

#endif
