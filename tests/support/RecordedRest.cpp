// The transport's and command runner's interface, recorded.
#include "support/Recorder.h"

#include <PlimTool.h>
#include <RestRequest.h>
#include <RestToMgr.h>
#include <UserManager.h>

#include <gtest/gtest.h>

#include <json/reader.h>
#include <json/writer.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>

using brevan::test::Answer;
using brevan::test::CommandResult;
using brevan::test::Recorder;

struct RestResponse::Impl {
    std::vector<Json::Value> records;
    int code = 0;
    std::string description;
};

struct RestResponseAccess {
    static void fill(RestResponse& response, const std::string& reply)
    {
        Json::Value root;
        std::istringstream text(reply);
        std::string errors;
        if (!Json::parseFromStream(Json::CharReaderBuilder(), text, &root, &errors)) {
            ADD_FAILURE() << "the scripted reply is no JSON: " << reply << "\n" << errors;
            return;
        }
        const Json::Value& data = root["data"];
        if (data.isArray()) {
            response.m_impl->records.assign(data.begin(), data.end());
        } else if (data.isObject() && !data.empty()) {
            response.m_impl->records.push_back(data);
        }
        response.m_impl->code = root["error"]["code"].asInt();
        response.m_impl->description = root["error"]["description"].asString();
    }
};

RestResponse::RestResponse() : m_impl(std::make_unique<Impl>()) {}
RestResponse::RestResponse(RestResponse&& other) noexcept = default;
RestResponse& RestResponse::operator=(RestResponse&& other) noexcept = default;
RestResponse::~RestResponse() = default;

unsigned int RestResponse::count() const
{
    return static_cast<unsigned int>(m_impl->records.size());
}

Json::Value RestResponse::operator[](unsigned int index) const
{
    return index < m_impl->records.size() ? m_impl->records[index] : Json::Value();
}

int RestResponse::getResponseCode(std::string& description) const
{
    description = m_impl->description;
    return m_impl->code;
}

unsigned long RestResponse::str2ul(const std::string& text)
{
    return str2ull(text);
}

unsigned long long RestResponse::str2ull(const std::string& text)
{
    const bool decimal = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
    errno = 0;
    const unsigned long long value = decimal ? std::strtoull(text.c_str(), nullptr, 10) : 0;
    return errno == 0 ? value : 0;
}

struct RestRequest::Impl {
    std::string server;
    std::string members;
    std::string headers;

    void add(const std::string& key, const std::string& value)
    {
        members += (members.empty() ? "" : ",") + Json::valueToQuotedString(key.c_str()) + ":" + value;
    }

    std::string line(REST_REQUEST_MODE_E mode, const std::string& path) const
    {
        static const char* const kModes[] = {"GET ", "POST ", "PUT ", "DELETE "};
        return kModes[mode] + path + (members.empty() ? "" : " {" + members + "}") + headers;
    }

    static int send(const std::string& line, RestResponse& response, std::vector<std::string>& headerLines)
    {
        const Answer answer = Recorder::instance().request(line);
        if (answer.sendResult == 0) {
            RestResponseAccess::fill(response, answer.reply);
            headerLines = answer.headerLines;
        }
        return answer.sendResult;
    }
};

RestRequest::RestRequest() : m_impl(std::make_unique<Impl>()) {}
RestRequest::~RestRequest() = default;

void RestRequest::SetServerUrl(const std::string& url)
{
    m_impl->server = url;
}

void RestRequest::HeaderAddProperty(HTTP_HEADER_E type, const std::string& value)
{
    m_impl->headers += " [" + std::to_string(type) + ": " + value + "]";
}

void RestRequest::BodyAddProperty(const std::string& key, const std::string& value)
{
    m_impl->add(key, Json::valueToQuotedString(value.c_str()));
}

void RestRequest::BodyAddProperty(const std::string& key, const char* value)
{
    m_impl->add(key, Json::valueToQuotedString(value));
}

void RestRequest::BodyAddProperty(const std::string& key, int value)
{
    m_impl->add(key, std::to_string(value));
}

void RestRequest::BodyAddProperty(const std::string& key, bool value)
{
    m_impl->add(key, value ? "true" : "false");
}

void RestRequest::BodyAddProperty(const std::string& key, unsigned long value)
{
    m_impl->add(key, std::to_string(value) + "ul");
}

void RestRequest::BodyAddProperty(const std::string& key, unsigned long long value)
{
    m_impl->add(key, std::to_string(value) + "ull");
}

int RestRequest::SendRequest(const std::string& path, REST_REQUEST_MODE_E mode, RestResponse& response,
                             std::vector<std::string>& headerLines, bool wantHeaderLines)
{
    const std::string line =
        m_impl->line(mode, m_impl->server + path) + (wantHeaderLines ? " (flag true)" : " (flag false)");
    return Impl::send(line, response, headerLines);
}

int RestRequest::SendRequest(unsigned int sessionHandle, const std::string& path, REST_REQUEST_MODE_E mode,
                             RestResponse& response, std::vector<std::string>& headerLines, bool wantHeaderLines)
{
    Recorder::instance().noteHandle(sessionHandle);
    return Impl::send(m_impl->line(mode, path) + (wantHeaderLines ? "" : " (flag false)"), response, headerLines);
}

CUserManager& CUserManager::getInstance()
{
    static CUserManager manager;
    return manager;
}

void CUserManager::RegisterSession(const void* key, const std::string& deviceId, const std::string& ip, unsigned int port,
                                   const std::string& token, const std::string& cookie, bool openedHere)
{
    std::ostringstream call;
    call << "register " << key << " " << deviceId << " " << ip << " " << port << " " << token << " " << cookie << " "
         << (openedHere ? "true" : "false");
    Recorder::instance().note(call.str());
}

void CUserManager::RemoveSession(const void* key)
{
    std::ostringstream call;
    call << "remove " << key;
    Recorder::instance().note(call.str());
}

int PlimTool::CheckIPValid(const std::string& ip)
{
    Recorder::instance().note("check " + ip);
    return Recorder::instance().ipCheckResult;
}

int RestToMgr::ExceSystemCmd(const RunShellCmdInfo& command, std::vector<std::string>& outputLines, std::string& errorText)
{
    std::ostringstream line;
    line << command.cmdCode << "/" << command.cmdType << "/" << command.requestId << " [" << command.shellCmd << "]";
    for (const std::string& parameter : command.param) {
        line << " (" << parameter << ")";
    }
    CommandResult result = Recorder::instance().command(line.str());
    outputLines.insert(outputLines.end(), result.lines.begin(), result.lines.end());
    errorText = result.errorText;
    return result.result;
}
