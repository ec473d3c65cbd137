#include "benchmarks/synthetic_result.h"

#include <fmt/format.h>

#include <array>
#include <iterator>
#include <random>

namespace {

constexpr int kChildren = 3;

class Writer {
public:
    explicit Writer(const SyntheticShape& shape) : m_shape(shape) {}

    std::string write() {
        m_text = R"({"format":"roofline-result","version":1,"kind":"cpu",)"
                 R"("program":{"name":"synthetic","usedThreads":4})";
        if (m_shape.levels) m_text += R"(,"levels":["L1","L2","L3","DRAM"])";
        if (m_shape.types)
            m_text += R"(,"machine":{"format":"roofline-machine","version":1,"roofs":[)"
                      R"({"id":6,"value":40,"unit":"GB/s"}]})";
        m_text += R"(,"rows":[)";
        for (bool first = true; m_rows < m_shape.rows; first = false) writeRow(first, m_shape.depth);
        return m_text + "]}";
    }

private:
    double random() { return m_uniform(m_random); }

    void writeRow(bool first, int depth) {
        const auto id = ++m_rows;
        append(R"({}{{"id":{},"kind":"loop","cells":{{"FunctionName":"kernel_{} in solve_{}",)"
               R"("Location":"src/file_{}.cpp:{}",)",
               first ? "" : ",\n", id, id, id % 97, id % 31, id % 1000);
        append(R"("LoopType":"{}","Vectorized":{},"SelfElapsedTime":{},"SelfFloatOps":{},"SelfIntOps":{})",
               id % 3 ? "Scalar" : "Vectorized", id % 2, random(), random() * 10.0, random());
        if (m_shape.types) {
            constexpr std::array kTypes{"Float32", "Int32; <b>Float64</b>", "<b>Int64</b>; Int32", "UInt8"};
            append(R"(,"SelfTime":{},"DataTypes":"{}")", random(), kTypes[id % kTypes.size()]);
            if (id % 3 == 0) append(R"(,"MainDataType":{})", id % 2 ? 16 : 8);
        }
        if (m_shape.levels) {
            double traffic = 4.0 * random();
            for (const char* level : {"L1", "L2", "L3", "Dram"}) {
                append(R"(,"Self{0}Load":{1},"Self{0}Store":{2})", level, traffic, traffic * 0.5 * random());
                traffic *= random();
            }
        } else {
            append(R"(,"SelfMemL1":{})", 4.0 * random());
        }
        m_text += '}';
        if (depth > 1 && m_rows < m_shape.rows) {
            m_text += R"(,"children":[)";
            for (int child = 0; child < kChildren && m_rows < m_shape.rows; ++child)
                writeRow(child == 0, depth - 1);
            m_text += ']';
        }
        m_text += '}';
    }

    template <class... Args>
    void append(fmt::format_string<Args...> format, Args&&... args) {
        fmt::format_to(std::back_inserter(m_text), format, std::forward<Args>(args)...);
    }

    SyntheticShape m_shape;
    std::string m_text;
    std::size_t m_rows = 0;
    std::mt19937_64 m_random{1};
    std::uniform_real_distribution<double> m_uniform{0.001, 1.0};
};

}  // namespace

std::string makeSyntheticResult(const SyntheticShape& shape) { return Writer(shape).write(); }
