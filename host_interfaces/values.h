// Value types that travel between library and host: variants, bags, counted pointers, iterators.
#pragma once

#include "host_interfaces/export.h"

#include <boost/intrusive_ptr.hpp>
#include <boost/property_tree/ptree_fwd.hpp>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace data_models2 {

// An object that counts its owners. Counting is thread-safe; `const` since a reader owns too.
class OMBRIX_API IRefCounted {
public:
    virtual ~IRefCounted() = default;
    virtual void addRef() const noexcept = 0;
    virtual void release() const noexcept = 0;
};

inline void intrusive_ptr_add_ref(const IRefCounted* object) noexcept { object->addRef(); }
inline void intrusive_ptr_release(const IRefCounted* object) noexcept { object->release(); }

template <class T>
using sptr_t = boost::intrusive_ptr<T>;
template <class T>
using intrusive_pointer_t = boost::intrusive_ptr<T>;

// Gives an interface its count: `class Dataset : public RefCounted<IDataset>`. The object lives on the heap.
template <class Interface>
class RefCounted : public Interface {
public:
    RefCounted() = default;
    RefCounted(const RefCounted&) : Interface() {}
    RefCounted& operator=(const RefCounted&) { return *this; }
    void addRef() const noexcept override { m_refs.fetch_add(1, std::memory_order_relaxed); }
    void release() const noexcept override {
        if (m_refs.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }

private:
    mutable std::atomic<std::uint32_t> m_refs{0};
};

// A text shared by many cells; the text never changes.
class OMBRIX_API SharedText final : public RefCounted<IRefCounted> {
public:
    explicit SharedText(std::string text) : m_text(std::move(text)) {}
    const std::string& text() const noexcept { return m_text; }

private:
    const std::string m_text;
};

// A cell's or an attribute's value. The kind numbers are part of the interface: below 10 an integer (odd:
// unsigned), 10 and 11 floating, 12 and 14 text, 17 empty.
class variant_t {
public:
    enum Kind : std::uint8_t {
        kBool = 0,
        kInt32 = 6,
        kUInt32 = 7,
        kInt64 = 8,
        kUInt64 = 9,
        kFloat = 10,
        kDouble = 11,
        kText = 12,     // counted storage
        kLiteral = 14,  // text of a string literal, not owned
        kEmpty = 17,
        kObject = 18,
    };

    variant_t() noexcept = default;
    variant_t(bool value) noexcept : m_kind(kBool) { m_data.i = value; }
    variant_t(std::int32_t value) noexcept : m_kind(kInt32) { m_data.i = value; }
    variant_t(std::uint32_t value) noexcept : m_kind(kUInt32) { m_data.u = value; }
    variant_t(long value) noexcept : m_kind(kInt64) { m_data.i = value; }
    variant_t(long long value) noexcept : m_kind(kInt64) { m_data.i = value; }
    variant_t(unsigned long value) noexcept : m_kind(kUInt64) { m_data.u = value; }
    variant_t(unsigned long long value) noexcept : m_kind(kUInt64) { m_data.u = value; }
    variant_t(float value) noexcept : m_kind(kFloat) { m_data.d = value; }
    variant_t(double value) noexcept : m_kind(kDouble) { m_data.d = value; }
    variant_t(std::string text) : variant_t(sptr_t<const SharedText>(new SharedText(std::move(text)))) {}
    template <class T>
    variant_t(T*) = delete;  // would be taken for a bool
    variant_t(const char* text) : variant_t(std::string(text ? text : "")) {}
    // A null text makes an empty variant.
    variant_t(sptr_t<const SharedText> text) noexcept {
        if (text) *this = counted(kText, text.detach());
    }
    variant_t(const variant_t& other) noexcept : m_data(other.m_data), m_kind(other.m_kind) {
        if (owns()) m_data.counted->addRef();
    }
    variant_t(variant_t&& other) noexcept
        : m_data(other.m_data), m_kind(std::exchange(other.m_kind, kEmpty)) {}
    variant_t& operator=(const variant_t& other) noexcept {
        variant_t copy(other);
        swap(copy);
        return *this;
    }
    variant_t& operator=(variant_t&& other) noexcept {
        variant_t taken(std::move(other));
        swap(taken);
        return *this;
    }
    ~variant_t() {
        if (owns()) m_data.counted->release();
    }

    // `text` must outlive the program's use of the variant: string literals.
    static variant_t literal(const char* text) noexcept {
        variant_t result;
        result.m_kind = kLiteral;
        result.m_data.literal = text ? text : "";
        return result;
    }
    static variant_t object(sptr_t<const IRefCounted> object) noexcept {
        return object ? counted(kObject, object.detach()) : variant_t();
    }

    Kind kind() const noexcept { return m_kind; }
    bool isEmpty() const noexcept { return m_kind == kEmpty; }
    bool isInteger() const noexcept { return m_kind < kFloat; }
    bool isNumber() const noexcept { return m_kind < kText; }
    bool isText() const noexcept { return m_kind == kText || m_kind == kLiteral; }

    // The number as a double, unsigned kinds read as unsigned; 0 for any other kind.
    double toDouble() const noexcept {
        if (m_kind >= kText) return 0.0;
        if (m_kind >= kFloat) return m_data.d;
        return m_kind % 2 ? static_cast<double>(m_data.u) : static_cast<double>(m_data.i);
    }
    // The stored integer's 64 bits; 0 for any other kind.
    std::int64_t signedValue() const noexcept { return isInteger() ? m_data.i : 0; }
    std::uint64_t unsignedValue() const noexcept { return isInteger() ? m_data.u : 0; }
    // The text; empty for any other kind. Valid as long as the variant.
    std::string_view text() const noexcept {
        if (m_kind == kText) return static_cast<const SharedText*>(m_data.counted)->text();
        return m_kind == kLiteral ? std::string_view(m_data.literal) : std::string_view();
    }
    // The object; null for any other kind.
    const IRefCounted* object() const noexcept { return m_kind == kObject ? m_data.counted : nullptr; }

    void swap(variant_t& other) noexcept {
        std::swap(m_data, other.m_data);
        std::swap(m_kind, other.m_kind);
    }

private:
    union Data {
        std::int64_t i;
        std::uint64_t u;
        double d;
        const char* literal;
        const IRefCounted* counted;
    };

    static variant_t counted(Kind kind, const IRefCounted* owned) noexcept {
        variant_t result;
        result.m_kind = kind;
        result.m_data.counted = owned;
        return result;
    }
    bool owns() const noexcept { return m_kind == kText || m_kind == kObject; }

    Data m_data{0};
    Kind m_kind = kEmpty;
};

// A property bag: an ordered tree of named children, names may repeat, each node holds one value. Repeated
// children of a list stand under the name "item", beside a member "arrayOf" with the value "item". Include
// <boost/property_tree/ptree.hpp> where bags are touched.
using variant_bag_t = boost::property_tree::basic_ptree<std::string, variant_t>;

// A position in a sequence of the host. Copies are independent positions. A null iterator is at its end.
template <class T>
class generic_iterator_t {
public:
    class ISource {
    public:
        virtual ~ISource() = default;
        virtual std::unique_ptr<ISource> clone() const = 0;
        virtual bool atEnd() const = 0;
        virtual void next() = 0;        // only when not at the end
        virtual T current() const = 0;  // only when not at the end
    };

    generic_iterator_t() = default;
    explicit generic_iterator_t(std::unique_ptr<ISource> source) : m_source(std::move(source)) {}
    generic_iterator_t(const generic_iterator_t& other)
        : m_source(other.m_source ? other.m_source->clone() : nullptr) {}
    generic_iterator_t(generic_iterator_t&&) noexcept = default;
    generic_iterator_t& operator=(generic_iterator_t other) noexcept {
        m_source = std::move(other.m_source);
        return *this;
    }

    bool isNull() const { return !m_source; }
    bool isEnd() const { return !m_source || m_source->atEnd(); }
    generic_iterator_t& operator++() {
        if (!isEnd()) m_source->next();
        return *this;
    }
    // Only when not at the end.
    T operator*() const { return m_source->current(); }

private:
    std::unique_ptr<ISource> m_source;
};

// An iterator over a vector that it owns together with its copies.
template <class T>
generic_iterator_t<T> makeIterator(std::vector<T> items) {
    class Source final : public generic_iterator_t<T>::ISource {
    public:
        explicit Source(std::shared_ptr<const std::vector<T>> items) : m_items(std::move(items)) {}
        std::unique_ptr<typename generic_iterator_t<T>::ISource> clone() const override {
            return std::make_unique<Source>(*this);
        }
        bool atEnd() const override { return m_index >= m_items->size(); }
        void next() override { ++m_index; }
        T current() const override { return (*m_items)[m_index]; }

    private:
        std::shared_ptr<const std::vector<T>> m_items;
        std::size_t m_index = 0;
    };
    return generic_iterator_t<T>(
        std::make_unique<Source>(std::make_shared<const std::vector<T>>(std::move(items))));
}

}  // namespace data_models2
