// Property bags from and to JSON, whatever the depth of either.
#include "host_interfaces/host_functions.h"

#include <boost/property_tree/ptree.hpp>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cmath>
#include <vector>

namespace data_models2 {
namespace {

constexpr const char* kArrayMark = "arrayOf";
constexpr const char* kItem = "item";

// A bag is copied and destroyed by recursion: a deeper text is refused.
constexpr std::size_t kMaxDepth = 256;

// Makes a bag of the parser's events. False ends the parsing.
class BagBuilder : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, BagBuilder> {
public:
    variant_bag_t& bag() { return m_root; }

    bool Null() { return add({}); }
    bool Bool(bool value) { return add(value); }
    bool Int(int value) { return value < 0 ? add(value) : Uint(0); }  // -0 arrives here
    bool Uint(unsigned value) { return add(value); }
    bool Int64(std::int64_t value) { return add(value); }
    bool Uint64(std::uint64_t value) { return add(value); }
    bool Double(double value) { return add(value); }
    bool String(const char* text, rapidjson::SizeType size, bool) { return add(std::string(text, size)); }
    bool Key(const char* text, rapidjson::SizeType size, bool) {
        m_key.assign(text, size);
        return true;
    }
    bool StartObject() { return open(false); }
    bool StartArray() {
        if (m_path.empty() || !open(true)) return false;
        append(kArrayMark, variant_t::literal(kItem));
        return true;
    }
    bool EndObject(rapidjson::SizeType) { return close(); }
    bool EndArray(rapidjson::SizeType) { return close(); }

private:
    struct Level {
        variant_bag_t* bag;
        bool isArray;
    };

    bool add(variant_t value) {
        if (m_path.empty()) return false;
        append(m_path.back().isArray ? kItem : m_key, std::move(value));
        return true;
    }
    variant_bag_t& append(const std::string& name, variant_t value) {
        return m_path.back().bag->push_back({name, variant_bag_t(std::move(value))})->second;
    }
    bool open(bool isArray) {
        if (m_path.size() == kMaxDepth) return false;
        auto* const bag = m_path.empty() ? &m_root : &append(m_path.back().isArray ? kItem : m_key, {});
        m_path.push_back({bag, isArray});
        return true;
    }
    bool close() {
        m_path.pop_back();
        return true;
    }

    variant_bag_t m_root;
    std::vector<Level> m_path;  // the bags that are open; they don't move
    std::string m_key;
};

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

void writeText(Writer& writer, std::string_view text) {
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void writeLeaf(Writer& writer, const variant_t& value) {
    if (value.isText()) return writeText(writer, value.text());
    if (!value.isNumber()) return void(writer.Null());
    if (value.kind() == variant_t::kBool) return void(writer.Bool(value.signedValue() != 0));
    if (!value.isInteger()) {
        const double number = value.toDouble();
        return void(std::isfinite(number) ? writer.Double(number) : writer.Null());
    }
    const bool isUnsigned = value.kind() % 2 == 1;
    isUnsigned ? writer.Uint64(value.unsignedValue()) : writer.Int64(value.signedValue());
}

// Writes bags depth first with a path of its own. An array is written by two levels of the same bag when the
// bag has other children too: one of the object, one of its items.
class BagWriter {
public:
    std::string write(const variant_bag_t& bag) {
        open(bag);
        while (!m_path.empty()) {
            if (m_path.back().next == m_path.back().bag->end())
                close();
            else
                step(m_path.back());
        }
        return {m_buffer.GetString(), m_buffer.GetSize()};
    }

private:
    enum class Form { Object, ListObject, Array };  // the second: an object whose member "item" is an array
    struct Level {
        const variant_bag_t* bag;
        variant_bag_t::const_iterator next;
        Form form;
    };

    void open(const variant_bag_t& bag) {
        const auto mark = bag.find(kArrayMark);
        const bool isList = mark != bag.not_found() && mark->second.data().text() == kItem;
        const bool isArray = isList && bag.count(kItem) + 1 == bag.size();
        if (bag.empty() && !m_path.empty()) return writeLeaf(m_writer, bag.data());
        open(bag, isArray ? Form::Array : isList ? Form::ListObject : Form::Object);
    }
    void open(const variant_bag_t& bag, Form form) {
        form == Form::Array ? m_writer.StartArray() : m_writer.StartObject();
        m_path.push_back({&bag, bag.begin(), form});
    }
    void close() {
        m_path.back().form == Form::Array ? m_writer.EndArray() : m_writer.EndObject();
        m_path.pop_back();
    }

    // Writes the next child; `level` may have moved afterwards.
    void step(Level& level) {
        const auto child = level.next++;
        const auto& bag = *level.bag;
        const auto form = level.form;
        if (form == Form::Array) {
            if (child->first == kItem) open(child->second);
            return;
        }
        const bool isFirst = bag.to_iterator(bag.find(child->first)) == child;
        if (!isFirst || (form == Form::ListObject && child->first == kArrayMark)) return;
        m_writer.Key(child->first.data(), static_cast<rapidjson::SizeType>(child->first.size()));
        if (form == Form::ListObject && child->first == kItem)
            open(bag, Form::Array);
        else
            open(child->second);
    }

    rapidjson::StringBuffer m_buffer;
    Writer m_writer{m_buffer};
    std::vector<Level> m_path;
};

}  // namespace

// Children of one name are all kept, in the text's order. A text nested deeper than 256 levels is refused.
bool loadBag(const std::string& json, variant_bag_t& bag) {
    if (json.find('\0') != std::string::npos) return false;  // where the parser would see the end
    BagBuilder builder;
    rapidjson::Reader reader;
    rapidjson::MemoryStream bytes(json.data(), json.size());
    rapidjson::EncodedInputStream<rapidjson::UTF8<>, rapidjson::MemoryStream> stream(bytes);
    constexpr auto flags = rapidjson::kParseIterativeFlag | rapidjson::kParseFullPrecisionFlag |
                           rapidjson::kParseValidateEncodingFlag;
    if (reader.Parse<flags>(stream, builder).IsError()) return false;
    bag.swap(builder.bag());
    return true;
}

// A bag without children is its value, the outermost one an empty object; a bag with children is an object,
// or an array when all of them are "item" beside "arrayOf". Items among other children become the object's
// member "item", an array. Of children of one name the first is written, as it is the one that a look-up
// finds. What JSON can't say (no value, an object, a number that isn't finite) is null.
std::string saveBag(const variant_bag_t& bag) { return BagWriter().write(bag); }

}  // namespace data_models2
