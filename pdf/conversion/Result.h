#pragma once

#include <QString>

#include <utility>
#include <variant>

namespace PDFConverter {

/// Why a conversion ended without a score.
struct Failure {
    /// What the user reads, as it stands.
    QString message;
};

/// The value that an operation gives, or why it gives none.
template <typename Value> class [[nodiscard]] Result final {
public:
    Result(Value value)
        : m_content(std::in_place_index<0>, std::move(value))
    {
    }
    Result(const Failure &failure)
        : m_content(std::in_place_index<1>, failure)
    {
    }

    explicit operator bool() const { return m_content.index() == 0; }
    Value &operator*() & { return std::get<0>(m_content); }
    const Value &operator*() const & { return std::get<0>(m_content); }
    Value &&operator*() && { return std::get<0>(std::move(m_content)); }
    Value *operator->() { return &std::get<0>(m_content); }
    const Value *operator->() const { return &std::get<0>(m_content); }
    const Failure &failure() const { return std::get<1>(m_content); }

private:
    std::variant<Value, Failure> m_content;
};

} // namespace PDFConverter
