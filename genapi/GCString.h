#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace GenICam_3_4 {

// GenICam's own string type; converts to and from std::string so callers can mix both freely.
class gcstring {
public:
    gcstring() = default;
    gcstring(const char* text) : m_text(text != nullptr ? text : "") {}
    gcstring(const char* text, std::size_t length) : m_text(text != nullptr ? std::string(text, length) : std::string())
    {
    }
    gcstring(std::string text) : m_text(std::move(text)) {}

    const char* c_str() const { return m_text.c_str(); }
    std::size_t size() const { return m_text.size(); }
    std::size_t length() const { return m_text.size(); }
    bool empty() const { return m_text.empty(); }
    operator std::string() const { return m_text; }
    const std::string& str() const { return m_text; }

    gcstring& operator+=(const gcstring& other)
    {
        m_text += other.m_text;
        return *this;
    }
    friend gcstring operator+(const gcstring& left, const gcstring& right)
    {
        return gcstring(left.m_text + right.m_text);
    }
    friend bool operator==(const gcstring& left, const gcstring& right) { return left.m_text == right.m_text; }
    friend bool operator!=(const gcstring& left, const gcstring& right) { return left.m_text != right.m_text; }
    friend bool operator<(const gcstring& left, const gcstring& right) { return left.m_text < right.m_text; }
    friend std::ostream& operator<<(std::ostream& stream, const gcstring& text) { return stream << text.m_text; }

private:
    std::string m_text;
};

using gcstring_vector = std::vector<gcstring>;

} // namespace GenICam_3_4
