#include "Disks.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace brevan::test {

namespace {

namespace fs = std::filesystem;

constexpr const char* kHost = "/run/simulated-host/";
constexpr const char* kById = "/dev/disk/by-id/";

std::string read(const std::string& path)
{
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void write(const std::string& path, const std::string& text)
{
    std::ofstream file(path);
    file << text;
    if (!file.flush()) {
        throw std::runtime_error("cannot write " + path);
    }
}

/// "60 2b 7e ...": `digits` with a blank after every second.
std::string spaced(const std::string& digits)
{
    std::string text;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        text += digits.substr(i, 2) + " ";
    }
    return text;
}

void replaceAll(std::string& text, const std::string& what, const std::string& with)
{
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
        text.replace(at, what.size(), with);
    }
}

}  // namespace

std::string hostInitiator()
{
    std::string name = read(std::string(kHost) + "initiator");
    return name.substr(0, name.find('\n'));
}

std::string fixture(const std::string& name, const std::string& wwn)
{
    std::string text = read(std::string(BREVAN_PAGE83_FIXTURES "/") + name + ".disk");
    replaceAll(text, "{wwn}", spaced(wwn));
    replaceAll(text, "{head}", spaced(wwn.substr(0, 16)));
    return text;
}

std::string otherWwn(unsigned number)
{
    char text[33];
    std::snprintf(text, sizeof text, "602b7e44ffffffff%016x", number);
    return text;
}

Disks::~Disks()
{
    for (auto before = m_before.rbegin(); before != m_before.rend(); ++before) {
        std::error_code ignored;
        fs::remove(before->path, ignored);
        if (!before->wasThere) {
            continue;
        }
        if (before->isLink) {
            fs::create_symlink(before->content, before->path, ignored);
        } else {
            std::ofstream(before->path) << before->content;
        }
    }
}

void Disks::change(const std::string& path, const std::string& text)
{
    const bool wasThere = fs::exists(path);
    m_before.push_back({path, false, wasThere, wasThere ? read(path) : std::string()});
    write(path, text);
}

void Disks::changeLink(const std::string& name, const std::string& target)
{
    const std::string path = kById + name;
    const bool wasThere = fs::is_symlink(path);
    m_before.push_back({path, true, wasThere, wasThere ? fs::read_symlink(path).string() : std::string()});
    fs::remove(path);
    if (!target.empty()) {
        fs::create_symlink(target, path);
    }
}

void Disks::add(const std::string& device, const std::string& answer, const std::vector<std::string>& names)
{
    change("/dev/" + device, "");
    this->answer(device, answer);
    for (const std::string& name : names) {
        link(name, device);
    }
}

void Disks::link(const std::string& name, const std::string& device)
{
    changeLink(name, "../../" + device);
}

void Disks::unlink(const std::string& name)
{
    changeLink(name, "");
}

void Disks::answer(const std::string& device, const std::string& text)
{
    change(std::string(kHost) + "disks/" + device, text);
}

std::vector<std::string> Disks::asked()
{
    const std::string path = std::string(kHost) + "asked";
    std::vector<std::string> names;
    std::ifstream file(path);
    for (std::string name; std::getline(file, name);) {
        names.push_back(name);
    }
    fs::remove(path);
    return names;
}

void Disks::list(const std::string& line)
{
    change(std::string(kHost) + "lsscsi", line + "\n");
}

}  // namespace brevan::test
