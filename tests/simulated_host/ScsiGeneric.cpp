// Preloaded into the processes of the simulated host: answers the ioctl SG_IO on its disks, which are plain files, as a SCSI disk
// would. What /dev/sdc says to INQUIRY for page 0x83 stands in /run/simulated-host/disks/sdc, a text:
//   # up to the end of the line: a comment
//   00 83 00 14 ...   bytes of the page, as many as the disk sends, whatever length they tell
//   status 02         the SCSI status (hexadecimal)
//   sense 70 00 05    the sense data that come with it
//   host-status 03    the adapter's own status (hexadecimal), such as 03 for a time-out
//   delay 300         the disk takes so many milliseconds
//   errno 6           the ioctl itself fails, as for a disk that was removed
// Each disk that was asked is a line of /run/simulated-host/asked.
// Needs nothing of the C++ library, so that it can be loaded into any process, also ahead of a sanitizer's runtime.
#include <dlfcn.h>
#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

constexpr const char* kFolder = "/run/simulated-host/disks/";
constexpr const char* kAsked = "/run/simulated-host/asked";
constexpr const char* kDevices = "/dev/";
constexpr unsigned char kInquiry = 0x12;         // SPC-5, 6.6
constexpr unsigned char kIdentification = 0x83;  // SPC-5, 7.7.6
constexpr unsigned char kCheckCondition = 0x02;  // SAM-6, 5.3.1
constexpr unsigned char kSenseDelivered = 0x08;  // of the Linux kernel: the adapter has fetched the sense data
constexpr size_t kLongestLine = 1024;

struct Bytes {
    unsigned char data[4096];
    size_t count;
};

struct Answer {
    Bytes page;
    Bytes sense;
    unsigned long status;
    unsigned long hostStatus;
    unsigned long delay;
    unsigned long error;
};

[[noreturn]] void unusable(const char* file, const char* line)
{
    fprintf(stderr, "simulated host: %s: cannot be understood: %s\n", file, line);
    abort();
}

/// Appends the hexadecimal bytes of a line.
bool append(Bytes& bytes, const char* text)
{
    char* end = nullptr;
    for (; *(text += strspn(text, " \t\n")) != '\0'; text = end) {
        const unsigned long value = strtoul(text, &end, 16);
        if (end != text + 2 || value > 0xFF || bytes.count == sizeof bytes.data) {
            return false;
        }
        bytes.data[bytes.count++] = static_cast<unsigned char>(value);
    }
    return true;
}

bool takeNumber(unsigned long& target, const char* text, int base)
{
    char* end = nullptr;
    target = strtoul(text, &end, base);
    return end != text && end[strspn(end, " \t\n")] == '\0';
}

bool takeLine(Answer& answer, char* line)
{
    struct Setting {
        const char* name;
        unsigned long& target;
        int base;
    };
    const Setting settings[] = {{"status ", answer.status, 16},
                                {"host-status ", answer.hostStatus, 16},
                                {"delay ", answer.delay, 10},
                                {"errno ", answer.error, 10}};
    line[strcspn(line, "#\n")] = '\0';
    for (const Setting& setting : settings) {
        if (strncmp(line, setting.name, strlen(setting.name)) == 0) {
            return takeNumber(setting.target, line + strlen(setting.name), setting.base);
        }
    }
    return strncmp(line, "sense ", 6) == 0 ? append(answer.sense, line + 6) : append(answer.page, line);
}

void noteAsked(const char* device)
{
    const int fd = open(kAsked, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (fd >= 0) {
        dprintf(fd, "%s\n", device);
        close(fd);
    }
}

/// What the disk behind a descriptor answers; false where that is no disk of the simulated host.
bool readAnswer(int fd, Answer& answer)
{
    char link[64];
    char device[256];
    char file[512];
    snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    const ssize_t length = readlink(link, device, sizeof device - 1);
    if (length < 0 || strncmp(device, kDevices, strlen(kDevices)) != 0) {
        return false;
    }
    device[length] = '\0';
    snprintf(file, sizeof file, "%s%s", kFolder, device + strlen(kDevices));
    FILE* text = fopen(file, "re");
    if (text == nullptr) {
        return false;
    }
    char line[kLongestLine];
    while (fgets(line, sizeof line, text) != nullptr) {
        if (!takeLine(answer, line)) {
            unusable(file, line);
        }
    }
    fclose(text);
    noteAsked(device + strlen(kDevices));
    return true;
}

size_t least(size_t one, size_t other)
{
    return one < other ? one : other;
}

void refuse(Answer& answer, unsigned char additionalCode)
{
    answer = Answer{};
    answer.status = kCheckCondition;
    const unsigned char sense[18] = {0x70, 0, 0x05,          0, 0, 0, 0, 10, 0, 0,
                                     0,    0, additionalCode};  // SPC-5, 4.4.3: illegal request
    memcpy(answer.sense.data, sense, sizeof sense);
    answer.sense.count = sizeof sense;
}

void wait(unsigned long milliseconds)
{
    timespec time = {static_cast<time_t>(milliseconds / 1000), static_cast<long>(milliseconds % 1000) * 1000000};
    while (nanosleep(&time, &time) != 0 && errno == EINTR) {
    }
}

/// Beyond what the disk has sent the caller's buffers stay as they were.
void deliver(const Answer& answer, size_t allocated, sg_io_hdr& request)
{
    const size_t sent = least(answer.page.count, least(allocated, request.dxfer_len));
    const size_t sense = least(answer.sense.count, request.mx_sb_len);
    memcpy(request.dxferp, answer.page.data, sent);
    if (sense > 0) {
        memcpy(request.sbp, answer.sense.data, sense);
    }
    request.resid = static_cast<int>(request.dxfer_len - sent);
    request.sb_len_wr = static_cast<unsigned char>(sense);
    request.status = static_cast<unsigned char>(answer.status);
    request.masked_status = static_cast<unsigned char>((answer.status >> 1) & 0x1F);
    request.msg_status = 0;
    request.host_status = static_cast<unsigned short>(answer.hostStatus);
    request.driver_status = sense > 0 ? kSenseDelivered : 0;
    request.duration = static_cast<unsigned>(answer.delay);
    request.info =
        request.status != 0 || request.host_status != 0 || request.driver_status != 0 ? SG_INFO_CHECK : SG_INFO_OK;
}

int scsiGeneric(Answer& answer, sg_io_hdr& request)
{
    const unsigned char* command = request.cmdp;
    if (request.interface_id != 'S' || request.cmd_len < 6) {
        errno = request.interface_id != 'S' ? ENOSYS : EMSGSIZE;
        return -1;
    }
    if (command[0] != kInquiry) {
        refuse(answer, 0x20);  // SPC-5, annex F: invalid command operation code
    } else if ((command[1] & 1) == 0 || command[2] != kIdentification) {
        refuse(answer, 0x24);  // SPC-5, annex F: invalid field in CDB
    }
    wait(answer.delay);
    if (answer.error != 0) {
        errno = static_cast<int>(answer.error);
        return -1;
    }
    deliver(answer, static_cast<size_t>(command[3]) << 8 | command[4], request);
    return 0;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int ioctl(int fd, unsigned long request, ...) noexcept
{
    using Ioctl = int (*)(int, unsigned long, void*);
    static const auto next = reinterpret_cast<Ioctl>(dlsym(RTLD_NEXT, "ioctl"));
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    Answer answer = {};
    if (request == SG_IO && argument != nullptr && readAnswer(fd, answer)) {
        return scsiGeneric(answer, *static_cast<sg_io_hdr*>(argument));
    }
    return next(fd, request, argument);
}
