#include "producers/simulator/camera/camera_state.h"

#include "producers/kit/port.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <type_traits>

namespace koro::simulator
{
namespace
{

constexpr std::uint64_t noFormat = 0;

// Each number takes eight bytes, lists of bytes and texts are as long as they can be.
class Writer
{
public:
    explicit Writer(std::vector<std::byte>& out) : bytes(out) {}

    template <typename T>
    void operator()(const T& value) const
    {
        if constexpr (std::is_floating_point_v<T>)
            Number(std::bit_cast<std::uint64_t>(value));
        else
            Number(static_cast<std::uint64_t>(value));
    }
    template <typename T, std::size_t number>
    void operator()(const std::array<T, number>& list) const
    {
        if constexpr (sizeof(T) == 1)
            Append(std::as_bytes(std::span(list)));
        else
            for (const T& value : list)
                (*this)(value);
    }
    void operator()(const std::string& text) const
    {
        std::array<char, textRegisterBytes> padded{};
        std::copy_n(text.begin(), std::min(text.size(), padded.size()), padded.begin());
        (*this)(padded);
    }
    void operator()(CameraClock::time_point time) const
    {
        (*this)(std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count());
    }

private:
    void Number(std::uint64_t number) const { Append(std::as_bytes(std::span(&number, 1))); }
    void Append(std::span<const std::byte> more) const { bytes.insert(bytes.end(), more.begin(), more.end()); }

    std::vector<std::byte>& bytes;
};

// The same, back. Whether anything was missing is known at the end.
class Reader
{
public:
    explicit Reader(std::span<const std::byte>& in) : bytes(in) {}

    template <typename T>
    void operator()(T& value) const
    {
        const std::uint64_t number = Number();
        if constexpr (std::is_floating_point_v<T>)
            value = std::bit_cast<T>(number);
        else if constexpr (std::is_same_v<T, bool>)
            value = number != 0;
        else
            value = static_cast<T>(number);
    }
    template <typename T, std::size_t number>
    void operator()(std::array<T, number>& list) const
    {
        if constexpr (sizeof(T) == 1)
            Take(std::as_writable_bytes(std::span(list)));
        else
            for (T& value : list)
                (*this)(value);
    }
    void operator()(std::string& text) const
    {
        std::array<char, textRegisterBytes> padded{};
        (*this)(padded);
        text.assign(padded.begin(), std::find(padded.begin(), padded.end(), '\0'));
    }
    void operator()(CameraClock::time_point& time) const
    {
        const auto now = CameraClock::now();
        const auto nowCount = std::chrono::duration_cast<std::chrono::nanoseconds>(now.time_since_epoch()).count();
        const auto count = static_cast<std::int64_t>(Number());
        time = count < 0 || count > nowCount ? now : CameraClock::time_point(std::chrono::nanoseconds(count));
    }

private:
    std::uint64_t Number() const
    {
        std::uint64_t number = 0;
        Take(std::as_writable_bytes(std::span(&number, 1)));
        return number;
    }
    void Take(std::span<std::byte> out) const
    {
        const std::size_t taken = std::min(out.size(), bytes.size());
        std::copy_n(bytes.begin(), taken, out.begin());
        bytes = bytes.subspan(taken);
    }

    std::span<const std::byte>& bytes;
};

template <typename State, typename Each>
void ForEachField(State& state, const Each& each)
{
    FeatureValues::ForEachField(state.values, each);
    for (auto& set : state.userSets)
        FeatureValues::ForEachField(set, each);
    each(state.userSetDefault);
    each(state.userName);
    each(state.firmware);
    each(state.nextFirmware);
    each(state.paramsLocked);
    each(state.isStreaming);
    Acquisition::ForEachField(state.acquisition, each);
    each(state.clockStart);
    each(state.latched_ns);
}

} // namespace

CameraState::CameraState(const CameraSettings& settings)
    : values(settings), userSets{values, values, values}, userName(settings.userName),
      firmware(settings.firmwareVersion), nextFirmware(firmware), clockStart(CameraClock::now())
{}

void CameraState::EndUse() noexcept
{
    acquisition.Stop();
    paramsLocked = 0;
    isStreaming = false;
}

std::vector<std::byte> Encode(const CameraState& state)
{
    std::vector<std::byte> bytes;
    const Writer write(bytes);
    write(state.values.format->code);
    for (const FeatureValues& set : state.userSets)
        write(set.format->code);
    ForEachField(state, write);
    write(state.timerStart.has_value());
    write(state.timerStart.value_or(CameraClock::time_point()));
    return bytes;
}

bool Decode(std::span<const std::byte> bytes, const Sensor& sensor, CameraState& state)
{
    if (bytes.size() != Encode(state).size()) return false;
    CameraState told = state;
    const Reader read(bytes);
    const auto readFormat = [&read](FeatureValues& values) {
        std::uint64_t code = noFormat;
        read(code);
        values.format = FindPixelFormatByCode(code);
        return values.format != nullptr;
    };
    bool fits = readFormat(told.values);
    for (FeatureValues& set : told.userSets)
        fits = readFormat(set) && fits;
    ForEachField(told, read);
    bool timerRuns = false;
    read(timerRuns);
    read(told.timerStart.emplace());
    if (!timerRuns) told.timerStart.reset();

    fits = fits && told.values.Fits(sensor) && told.userSetDefault < told.userSets.size() && told.paramsLocked <= 1;
    fits = fits && std::all_of(told.userSets.begin(), told.userSets.end(), [&](const FeatureValues& set) {
               return set.Fits(sensor);
           });
    if (fits) state = std::move(told);
    return fits;
}

std::string IdentityOf(const CameraSettings& settings, const std::string& tlType)
{
    std::string identity = tlType;
    for (const std::string& part :
         {settings.vendor, settings.model, settings.serial, settings.format->name, std::to_string(settings.width),
          std::to_string(settings.height), std::to_string(settings.rate), std::string(settings.scan3d ? "3D" : "2D")})
        identity += '\n' + part;
    return identity;
}

} // namespace koro::simulator
