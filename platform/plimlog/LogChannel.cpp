#include "platform/plimlog/LogChannel.h"

#include "platform/plimlog/ProcessIds.h"
#include "platform/plimlog/RotatingFile.h"

#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/base_sink.h>

#include <cerrno>

namespace brevan::plimlog {
namespace {

namespace level = spdlog::level;

constexpr level::level_enum kLevels[] = {level::debug, level::info, level::warn, level::err, level::off};

level::level_enum toSpdlog(LogLevel value)
{
    return kLevels[static_cast<int>(value)];
}

/// Appends what `kText` makes of a message; the three fields that spdlog would write differently.
template <void (*kText)(const spdlog::details::log_msg&, spdlog::memory_buf_t&)>
class Field : public spdlog::custom_flag_formatter {
public:
    void format(const spdlog::details::log_msg& message, const std::tm&, spdlog::memory_buf_t& out) override
    {
        kText(message, out);
    }
    std::unique_ptr<custom_flag_formatter> clone() const override { return std::make_unique<Field>(); }
};

void appendLevel(const spdlog::details::log_msg& message, spdlog::memory_buf_t& out)
{
    // As wide as the widest, so that the messages stand below each other.
    static constexpr std::string_view kNames[level::n_levels] = {"TRACE", "DEBUG", "INFO ", "WARN ",
                                                                 "ERROR", "FATAL", "OFF  "};
    out.append(kNames[message.level].begin(), kNames[message.level].end());
}

void appendProcess(const spdlog::details::log_msg&, spdlog::memory_buf_t& out)
{
    const fmt::format_int text(currentProcessId());
    out.append(text.data(), text.data() + text.size());
}

void appendThread(const spdlog::details::log_msg&, spdlog::memory_buf_t& out)
{
    const fmt::format_int text(currentThreadId());
    out.append(text.data(), text.data() + text.size());
}

std::unique_ptr<spdlog::formatter> layoutOf(LogKind kind)
{
    auto formatter = std::make_unique<spdlog::pattern_formatter>();
    formatter->add_flag<Field<appendLevel>>('l').add_flag<Field<appendProcess>>('P').add_flag<Field<appendThread>>('t');
    formatter->set_pattern(kind == LogKind::Run ? "%Y-%m-%d %H:%M:%S.%e %l %P %t %v" : "%v");
    return formatter;
}

/// Hands whole lines to the file. Needs no lock of its own: a channel is used by one thread at a time.
class FileSink : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
public:
    FileSink(const std::string& directory, const LogFileName& name, const ChannelSettings& settings)
        : base_sink(layoutOf(name.kind)), m_file(directory, name, settings.maxFileBytes, settings.maxFiles)
    {
    }

    RotatingFile& file() { return m_file; }
    int error() const { return m_error; }
    void setError(int error) { m_error = error; }

private:
    void sink_it_(const spdlog::details::log_msg& message) override
    {
        spdlog::memory_buf_t line;
        formatter_->format(message, line);
        m_error = m_file.write(std::string_view(line.data(), line.size()));
    }
    void flush_() override {}  // every line is handed to the kernel as it comes

    RotatingFile m_file;
    int m_error = 0;
};

}  // namespace

struct LogChannel::Impl {
    Impl(const std::string& directory, const LogFileName& name, const ChannelSettings& settings)
        : sink(std::make_shared<FileSink>(directory, name, settings)), logger(name.tag, sink)
    {
        logger.set_level(toSpdlog(settings.level));
        logger.set_error_handler([this](const std::string&) { sink->setError(ENOMEM); });
    }

    std::shared_ptr<FileSink> sink;
    spdlog::logger logger;
};

LogChannel::LogChannel(const std::string& directory, const LogFileName& name, const ChannelSettings& settings)
    : m_impl(std::make_unique<Impl>(directory, name, settings))
{
}

LogChannel::~LogChannel() = default;

int LogChannel::open() noexcept
{
    return m_impl->sink->file().open();
}

int LogChannel::write(LogLevel level, std::string_view text) noexcept
{
    m_impl->sink->setError(0);
    m_impl->logger.log(toSpdlog(level), spdlog::string_view_t(text.data(), text.size()));
    return m_impl->sink->error();
}

std::string LogChannel::path() const
{
    return m_impl->sink->file().path();
}

}  // namespace brevan::plimlog
