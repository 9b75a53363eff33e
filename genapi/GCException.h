#pragma once

#include <exception>
#include <string>

namespace GenICam_3_4 {

// Root of every exception the GenApi layer throws; GetDescription() is the text shown to users.
class GenericException : public std::exception {
public:
    explicit GenericException(std::string description, const char* sourceFile = "", unsigned int sourceLine = 0)
        : m_description(std::move(description)), m_sourceFile(sourceFile != nullptr ? sourceFile : ""),
          m_sourceLine(sourceLine)
    {
    }

    const char* GetDescription() const noexcept { return m_description.c_str(); }
    const char* GetSourceFileName() const noexcept { return m_sourceFile.c_str(); }
    unsigned int GetSourceLine() const noexcept { return m_sourceLine; }
    const char* what() const noexcept override { return m_description.c_str(); }

private:
    std::string m_description;
    std::string m_sourceFile;
    unsigned int m_sourceLine;
};

// A programming error: empty smart pointer, wrong argument kind, node of an unexpected type.
class LogicalErrorException : public GenericException {
public:
    using GenericException::GenericException;
};
// The node's access mode forbids the operation (not readable, not writable, not available).
class AccessException : public GenericException {
public:
    using GenericException::GenericException;
};
// A value outside the node's minimum, maximum or increment.
class OutOfRangeException : public GenericException {
public:
    using GenericException::GenericException;
};
// An argument that the node cannot interpret, e.g. an unknown enumeration entry.
class InvalidArgumentException : public GenericException {
public:
    using GenericException::GenericException;
};
// A failure while evaluating the node map: bad XML, device I/O error, broken formula.
class RuntimeException : public GenericException {
public:
    using GenericException::GenericException;
};
// A device did not answer in time.
class TimeoutException : public GenericException {
public:
    using GenericException::GenericException;
};

} // namespace GenICam_3_4
