// GCArray.h: GCSequence<T>, the common base of gcstring_vector, node_vector and value_vector: the operations of a
// standard vector as virtual functions, with its own iterators.
//
// A value: copies are independent. Iterators become invalid when the length changes.
#pragma once

#include <Base/GCTypes.h>
#include <iterator>
#include <vector>

namespace GENICAM_NAMESPACE
{

template <class T>
class GCSequence
{
public:
    class const_iterator
    {
    public:
        typedef std::random_access_iterator_tag iterator_category;
        typedef T value_type;
        typedef ptrdiff_t difference_type;
        typedef const T* pointer;
        typedef const T& reference;

        explicit const_iterator(T* target = nullptr) : element(target) {}
        const T& operator*() const { return *element; }
        const T* operator->() const { return element; }
        const T& operator[](difference_type n) const { return element[n]; }
        const_iterator& operator++() { return *this += 1; }
        const_iterator operator++(int) { return const_iterator(element++); }
        const_iterator& operator--() { return *this -= 1; }
        const_iterator operator--(int) { return const_iterator(element--); }
        const_iterator& operator+=(difference_type n)
        {
            element += n;
            return *this;
        }
        const_iterator& operator-=(difference_type n) { return *this += -n; }
        const_iterator operator+(difference_type n) const { return const_iterator(element + n); }
        const_iterator operator-(difference_type n) const { return const_iterator(element - n); }
        difference_type operator-(const const_iterator& other) const { return element - other.element; }
        bool operator==(const const_iterator& other) const { return element == other.element; }
        bool operator!=(const const_iterator& other) const { return element != other.element; }
        bool operator<(const const_iterator& other) const { return element < other.element; }
        bool operator>(const const_iterator& other) const { return element > other.element; }
        bool operator<=(const const_iterator& other) const { return element <= other.element; }
        bool operator>=(const const_iterator& other) const { return element >= other.element; }

    protected:
        T* element;
    };

    class iterator : public const_iterator
    {
    public:
        typedef T* pointer;
        typedef T& reference;
        typedef typename const_iterator::difference_type difference_type;

        explicit iterator(T* target = nullptr) : const_iterator(target) {}
        T& operator*() const { return *this->element; }
        T* operator->() const { return this->element; }
        T& operator[](difference_type n) const { return this->element[n]; }
        iterator& operator++() { return *this += 1; }
        iterator operator++(int) { return iterator(this->element++); }
        iterator& operator--() { return *this -= 1; }
        iterator operator--(int) { return iterator(this->element--); }
        iterator& operator+=(difference_type n)
        {
            this->element += n;
            return *this;
        }
        iterator& operator-=(difference_type n) { return *this += -n; }
        iterator operator+(difference_type n) const { return iterator(this->element + n); }
        iterator operator-(difference_type n) const { return iterator(this->element - n); }
        using const_iterator::operator-;
    };

    GCSequence() {}
    GCSequence(size_t count, const T& value) : elements(count, value) {}
    virtual ~GCSequence() {}
    GCSequence(const GCSequence& other) : elements(other.elements) {}
    GCSequence& operator=(const GCSequence& other)
    {
        elements = other.elements;
        return *this;
    }

    virtual void assign(size_t count, const T& value) { elements.assign(count, value); }
    virtual void clear() { elements.clear(); }
    virtual iterator erase(iterator position) { return At(elements.erase(elements.begin() + Offset(position))); }
    virtual void erase(size_t position) { elements.erase(elements.begin() + static_cast<ptrdiff_t>(position)); }
    virtual T& at(size_t position) { return elements.at(position); }
    virtual const T& at(size_t position) const { return elements.at(position); }
    virtual T& front() { return elements.front(); }
    virtual const T& front() const { return elements.front(); }
    virtual T& back() { return elements.back(); }
    virtual const T& back() const { return elements.back(); }
    virtual iterator begin() { return iterator(elements.data()); }
    virtual const_iterator begin() const { return const_iterator(const_cast<T*>(elements.data())); }
    virtual iterator end() { return begin() + Count(); }
    virtual const_iterator end() const { return begin() + Count(); }
    virtual size_t capacity() const { return elements.capacity(); }
    virtual size_t max_size() const { return elements.max_size(); }
    virtual size_t size() const { return elements.size(); }
    virtual bool empty() const { return elements.empty(); }
    virtual iterator insert(iterator position, const T& value)
    {
        return At(elements.insert(elements.begin() + Offset(position), value));
    }
    virtual void insert(size_t position, const T& value)
    {
        elements.insert(elements.begin() + static_cast<ptrdiff_t>(position), value);
    }
    virtual void pop_back() { elements.pop_back(); }
    virtual void push_back(const T& value) { elements.push_back(value); }
    virtual void reserve(size_t count) { elements.reserve(count); }

    T& operator[](size_t position) { return elements[position]; }
    const T& operator[](size_t position) const { return elements[position]; }

protected:
    std::vector<T> elements;

private:
    ptrdiff_t Count() const { return static_cast<ptrdiff_t>(elements.size()); }
    ptrdiff_t Offset(iterator position) { return position - begin(); }
    iterator At(typename std::vector<T>::iterator position) { return begin() + (position - elements.begin()); }
};

} // namespace GENICAM_NAMESPACE
