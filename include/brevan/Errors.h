#ifndef BREVAN_ERRORS_H
#define BREVAN_ERRORS_H

#include <brevan/Export.h>

#include <exception>
#include <string>

/// Thrown by value, caught by reference, by every operation of the resource handlers and by the argument checks of attach
/// and detach:
///   - a parameter is missing or wrong: its message followed by the operation's name; nothing was sent;
///   - the request could not be delivered or got no usable reply: "url error or internet error " and the operation's
///     name.
/// brevan::lastFailure() (LastFailure.h) adds the code and what to do. No operation of a handler lets another type through.
class BREVAN_API PlimAPIException : public std::exception {
public:
    /// what() will be "Exception:" followed by `text`, with no blank between.
    explicit PlimAPIException(std::string text);
    PlimAPIException(const PlimAPIException& other);
    PlimAPIException& operator=(const PlimAPIException& other);
    ~PlimAPIException() override;

    /// Valid as long as this object.
    const char* what() const noexcept override;

private:
    std::string m_message;
};

/// The array answered with an error: "get error response, error code:" code ", description:" description " " operation.
class BREVAN_API PlimAPIExceptionWithErrCode : public PlimAPIException {
public:
    PlimAPIExceptionWithErrCode(int errCode, std::string text);
    PlimAPIExceptionWithErrCode(const PlimAPIExceptionWithErrCode& other);
    PlimAPIExceptionWithErrCode& operator=(const PlimAPIExceptionWithErrCode& other);
    ~PlimAPIExceptionWithErrCode() override;

    /// The array's code as it was reported; may be negative. Not a const member: catch by (non-const) reference.
    int getErrCode();

private:
    int m_errCode;
};

#endif
