#include <brevan/Errors.h>

#include <utility>

PlimAPIException::PlimAPIException(std::string text) : m_message("Exception:" + std::move(text)) {}
PlimAPIException::PlimAPIException(const PlimAPIException&) = default;
PlimAPIException& PlimAPIException::operator=(const PlimAPIException&) = default;
PlimAPIException::~PlimAPIException() = default;

const char* PlimAPIException::what() const noexcept
{
    return m_message.c_str();
}

PlimAPIExceptionWithErrCode::PlimAPIExceptionWithErrCode(int errCode, std::string text)
    : PlimAPIException(std::move(text)), m_errCode(errCode)
{
}
PlimAPIExceptionWithErrCode::PlimAPIExceptionWithErrCode(const PlimAPIExceptionWithErrCode&) = default;
PlimAPIExceptionWithErrCode& PlimAPIExceptionWithErrCode::operator=(const PlimAPIExceptionWithErrCode&) = default;
PlimAPIExceptionWithErrCode::~PlimAPIExceptionWithErrCode() = default;

int PlimAPIExceptionWithErrCode::getErrCode()
{
    return m_errCode;
}
