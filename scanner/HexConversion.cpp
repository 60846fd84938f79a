// The conversions between a designator's bytes and text.
#include "scanner/DiskScannerHandlerImpl.h"

#include "scanner/NullArgument.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

using brevan::isNull;

namespace {

/// All sums are computed unsigned, where wrapping is defined, and converted at the end.
unsigned int power16(int exponent)
{
    unsigned int step = 1;
    for (int i = 0; i < exponent; ++i) {
        step *= 16U;
    }
    return step;
}

int asSigned(unsigned int value)
{
    int result = 0;
    std::memcpy(&result, &value, sizeof result);
    return result;
}

int add(int accumulator, unsigned int digitValue, int position)
{
    return asSigned(static_cast<unsigned int>(accumulator) + digitValue * power16(position));
}

/// Room for two digits and the terminator of the byte at `index`.
bool printByte(char* text, int textSize, int index, unsigned char byte)
{
    const auto room = static_cast<std::size_t>(textSize - 2 * index);
    const int printed = std::snprintf(text + 2 * index, room, "%02x", static_cast<unsigned int>(byte));
    return printed == 2 && room > 2;
}

}  // namespace

int CDiskScannerHandlerImpl::BinaryToAscii(char* hexBuffer, int hexBufferSize, unsigned char* bytes, int offset, int count)
{
    if (isNull(bytes, "pucBuffer", "BinaryToAscii") || isNull(hexBuffer, "pszHexBuffer", "BinaryToAscii")) {
        return -1;
    }
    if (hexBufferSize <= std::int64_t{count} * 2) {
        return -1;
    }
    for (int i = 0; i < count; ++i) {
        if (!printByte(hexBuffer, hexBufferSize, i, bytes[offset + i])) {
            return -1;
        }
    }
    return 0;
}

int CDiskScannerHandlerImpl::ConvertLUNIDtoAscii(unsigned char* asciiLunId, int asciiSize, unsigned char* lunId, int length)
{
    if (isNull(asciiLunId, "puszAsciiLunID", "ConvertLUNIDtoAscii") ||
        isNull(lunId, "puszLunLunID", "ConvertLUNIDtoAscii")) {
        return -1;
    }
    if (asciiSize <= length) {
        return -1;
    }
    for (int i = 0; i < length / 2; ++i) {
        if (!printByte(reinterpret_cast<char*>(asciiLunId), asciiSize, i, lunId[i])) {
            return -1;
        }
    }
    return 0;
}

int CDiskScannerHandlerImpl::HextoDec(char* decStr, char* hexStr, int decSize)
{
    if (isNull(decStr, "pDecStr", "HextoDec") || isNull(hexStr, "pHexStr", "HextoDec")) {
        return -1;
    }
    int sum = 0;
    const int digits = static_cast<int>(std::strlen(hexStr));
    for (int i = 0; i < digits; ++i) {
        const char digit = hexStr[i];
        const int position = digits - i - 1;
        if (digit >= '0' && digit <= '9') {
            sum = add(sum, static_cast<unsigned int>(digit - '0'), position);
        } else if (HexEncode(digit, position, sum) != 0) {
            return -1;
        }
    }
    const int printed = decSize > 0 ? std::snprintf(decStr, static_cast<std::size_t>(decSize), "%d", sum) : -1;
    return printed < 0 || printed >= decSize ? -1 : 0;
}

int CDiskScannerHandlerImpl::HexEncode(char digit, int position, int& accumulator)
{
    if (digit >= 'A' && digit <= 'F') {
        accumulator = add(accumulator, static_cast<unsigned int>(digit - 'A') + 10U, position);
    } else if (digit >= 'a' && digit <= 'f') {
        accumulator = add(accumulator, static_cast<unsigned int>(digit - 'a') + 10U, position);
    } else {
        return -1;
    }
    return 0;
}

int CDiskScannerHandlerImpl::CalStep(int exponent)
{
    return asSigned(power16(exponent));
}
