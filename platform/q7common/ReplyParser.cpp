#include "JsonKeys.h"
#include "Reply.h"

#include <json/reader.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <new>

namespace brevan {

namespace {

// Replies nest three levels deep. JsonCpp recurses once a level, and callers' threads may have 64 KiB of stack.
constexpr int kDeepestNesting = 32;

std::unique_ptr<Json::CharReader> makeReader()
{
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["stackLimit"] = kDeepestNesting;
    builder["rejectDupKeys"] = false;  // hasKeyTwice() sees them
    return std::unique_ptr<Json::CharReader>(builder.newCharReader());
}

/// One reader a thread: making one costs more than reading a small reply.
Json::CharReader& readerOfThisThread()
{
    thread_local const std::unique_ptr<Json::CharReader> reader = makeReader();
    return *reader;  // NOLINT(clang-analyzer-cplusplus.NewDelete): it lives as long as its thread
}

bool parseJson(std::string_view text, Json::Value& root)
{
    // A bare NUL is nowhere legal in JSON, but JsonCpp takes it for the end of the text.
    if (text.find('\0') != std::string_view::npos) {
        return false;
    }
    try {
        return readerOfThisThread().parse(text.data(), text.data() + text.size(), &root, nullptr) &&
               !hasKeyTwice(text, root);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        return false;
    }
}

Json::Value* member(Json::Value& object, std::string_view key)
{
    const char* begin = key.data();
    return object.find(begin, begin + key.size()) == nullptr ? nullptr : &object[key.data()];
}

bool readCode(const Json::Value& value, int& code)
{
    if (value.isString()) {
        const char* begin = nullptr;
        const char* end = nullptr;
        value.getString(&begin, &end);
        const auto [stop, fault] = std::from_chars(begin, end, code);
        return fault == std::errc() && stop == end && begin != end;
    }
    if (!value.isInt()) {
        return false;
    }
    code = value.asInt();
    return true;
}

const char* readError(Json::Value* error, Reply& reply)
{
    if (error == nullptr || !error->isObject()) {
        return "it has no \"error\" object";
    }
    const Json::Value* code = member(*error, "code");
    if (code == nullptr || !readCode(*code, reply.code)) {
        return "its error code is not a whole number";
    }
    const Json::Value* description = member(*error, "description");
    if (description != nullptr) {
        if (description->isObject() || description->isArray()) {
            return "its error description is not a text";
        }
        reply.description = description->asString();
    }
    return nullptr;
}

const char* readData(Json::Value* data, Reply& reply)
{
    if (data == nullptr || data->isNull()) {
        return nullptr;
    }
    const auto isRecord = [](const Json::Value& record) { return record.isObject(); };
    const bool isList = data->isArray() && std::all_of(data->begin(), data->end(), isRecord);
    if (!isList && !data->isObject()) {
        return "its \"data\" is neither an object nor a list of objects";
    }
    if (!data->empty()) {
        reply.data.swap(*data);
    }
    return nullptr;
}

}  // namespace

const char* parseReply(std::string_view text, Reply& reply)
{
    Json::Value root;
    if (!parseJson(text, root)) {
        return "it is not complete and correct JSON";
    }
    if (!root.isObject()) {
        return "it is not a JSON object";
    }
    const char* fault = readError(member(root, "error"), reply);
    return fault != nullptr ? fault : readData(member(root, "data"), reply);
}

}  // namespace brevan
