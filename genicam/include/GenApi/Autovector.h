// int64_autovector_t, double_autovector_t: arrays of numbers. Copies share the elements with their source. No index is
// checked.
#pragma once

#include <Base/GCTypes.h>
#include <memory>
#include <vector>

namespace GENAPI_NAMESPACE
{

template <class T>
class autovector_t
{
public:
    explicit autovector_t() : elements(std::make_shared<std::vector<T>>()) {}
    explicit autovector_t(size_t count) : elements(std::make_shared<std::vector<T>>(count)) {}
    autovector_t(const autovector_t& other) : elements(other.elements) {}
    virtual ~autovector_t() {}
    autovector_t& operator=(const autovector_t& other)
    {
        elements = other.elements;
        return *this;
    }

    T& operator[](size_t position) { return (*elements)[position]; }
    const T& operator[](size_t position) const { return (*elements)[position]; }
    size_t size() const { return elements->size(); }

private:
    std::shared_ptr<std::vector<T>> elements;
};

class int64_autovector_t : public autovector_t<int64_t>
{
public:
    explicit int64_autovector_t() {}
    explicit int64_autovector_t(size_t count) : autovector_t<int64_t>(count) {}
};

class double_autovector_t : public autovector_t<double>
{
public:
    explicit double_autovector_t() {}
    explicit double_autovector_t(size_t count) : autovector_t<double>(count) {}
};

} // namespace GENAPI_NAMESPACE
