// A thin layer over rapidjson: objects and arrays as values that are filled first and placed then.
#pragma once

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cmath>
#include <concepts>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace rabbit {

using Allocator = rapidjson::MemoryPoolAllocator<>;
using Value = rapidjson::Value;

class object;
class array;

// Texts are copied into the document. A number that isn't finite has no form in JSON: it becomes null.
inline auto refer(std::string_view text) {  // rapidjson refuses a null pointer even for an empty text
    return rapidjson::StringRef(text.data() ? text.data() : "",
                                static_cast<rapidjson::SizeType>(text.size()));
}
// With the length said: a reference beside an allocator would be taken for a text that ends at its first 0.
inline Value makeValue(std::string_view text, Allocator& allocator) {
    const auto reference = refer(text);
    return Value(reference.s, reference.length, allocator);
}
inline Value makeValue(double number, Allocator&) { return std::isfinite(number) ? Value(number) : Value(); }
inline Value makeValue(std::same_as<bool> auto flag, Allocator&) { return Value(flag); }
inline Value makeValue(std::int32_t number, Allocator&) { return Value(number); }
inline Value makeValue(std::uint32_t number, Allocator&) { return Value(number); }
inline Value makeValue(std::int64_t number, Allocator&) { return Value(number); }
inline Value makeValue(std::uint64_t number, Allocator&) { return Value(number); }
inline Value makeValue(Value&& value, Allocator&) { return std::move(value); }  // of the same document
Value makeValue(object&& members, Allocator& allocator);
Value makeValue(array&& items, Allocator& allocator);

// An array under construction; it belongs to one document.
class array {
public:
    explicit array(Allocator& allocator) : m_value(rapidjson::kArrayType), m_allocator(&allocator) {}
    Allocator& allocator() const { return *m_allocator; }
    void reserve(std::size_t count) {
        m_value.Reserve(static_cast<rapidjson::SizeType>(count), *m_allocator);
    }
    bool empty() const { return m_value.Empty(); }

    template <class T>
    void push(T&& item) {
        m_value.PushBack(makeValue(std::forward<T>(item), *m_allocator), *m_allocator);
    }
    Value take() { return std::move(m_value); }

    template <class Writer>
    void write(Writer& writer) const {
        m_value.Accept(writer);
    }

private:
    Value m_value;
    Allocator* m_allocator;
};

// An object under construction; it belongs to one document.
class object {
public:
    explicit object(Allocator& allocator) : m_value(rapidjson::kObjectType), m_allocator(&allocator) {}
    Allocator& allocator() const { return *m_allocator; }
    bool has(std::string_view key) const { return m_value.HasMember(keyOf(key)); }

    // Sets a member; one of that name is replaced where it stands.
    template <class T>
    void set(std::string_view key, T&& item) {
        if (has(key))
            m_value[keyOf(key)] = makeValue(std::forward<T>(item), *m_allocator);
        else
            append(key, std::forward<T>(item));
    }
    // The same where the caller knows that the key is new, such as when the keys come from a map.
    template <class T>
    void append(std::string_view key, T&& item) {
        m_value.AddMember(makeValue(key, *m_allocator), makeValue(std::forward<T>(item), *m_allocator),
                          *m_allocator);
    }
    // A large array of objects behind all other members, only of a root: its items are written one by one and
    // are never in memory all at once. `fill` writes the item of an index and owns what it needs.
    using FillItem = std::function<void(std::size_t index, object& item)>;
    void stream(std::string_view key, std::size_t count, FillItem fill) {
        m_streams.push_back({std::string(key), count, std::move(fill)});
    }
    Value take() { return std::move(m_value); }

    template <class Writer>
    void write(Writer& writer) const;

private:
    struct Stream {
        std::string key;
        std::size_t count;
        FillItem fill;
    };

    static Value keyOf(std::string_view key) { return Value(refer(key)); }

    Value m_value;
    Allocator* m_allocator;
    std::vector<Stream> m_streams;
};

template <class Writer>
void object::write(Writer& writer) const {
    writer.StartObject();
    for (const auto& member : m_value.GetObject()) {
        member.name.Accept(writer);
        member.value.Accept(writer);
    }
    for (const Stream& stream : m_streams) {
        Allocator allocator;
        writer.Key(stream.key.data(), static_cast<rapidjson::SizeType>(stream.key.size()));
        writer.StartArray();
        for (std::size_t i = 0; i < stream.count; ++i, allocator.Clear()) {
            object item(allocator);
            stream.fill(i, item);
            item.write(writer);
        }
        writer.EndArray();
    }
    writer.EndObject();
}

inline Value makeValue(object&& members, Allocator&) { return members.take(); }
inline Value makeValue(array&& items, Allocator&) { return items.take(); }

// The compact text of an object or array.
template <class Node>
std::string toString(const Node& node) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    node.write(writer);
    return {buffer.GetString(), buffer.GetSize()};
}

// Fills one object or array with `fill` and gives its compact text.
template <class Node, class Fill>
std::string writeText(Fill&& fill) {
    Allocator allocator;
    Node root(allocator);
    fill(root);
    return toString(root);
}
template <class Fill>
std::string writeObject(Fill&& fill) {
    return writeText<object>(fill);
}
template <class Fill>
std::string writeArray(Fill&& fill) {
    return writeText<array>(fill);
}

}  // namespace rabbit
