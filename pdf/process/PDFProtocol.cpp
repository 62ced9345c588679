#include "pdf/process/PDFProtocol.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <sys/socket.h>

namespace {

void pack(const QRectF &rect, double (&numbers)[4])
{
    numbers[0] = rect.x();
    numbers[1] = rect.y();
    numbers[2] = rect.width();
    numbers[3] = rect.height();
}

bool isRect(const double (&numbers)[4])
{
    for (const double number : numbers) {
        if (!std::isfinite(number))
            return false;
    }
    return true;
}

QRectF rect(const double (&numbers)[4]) { return { numbers[0], numbers[1], numbers[2], numbers[3] }; }

} // namespace

namespace PDFProtocol {

Box packed(const PageBox &box)
{
    Box result{};
    pack(box.media, result.media);
    pack(box.crop, result.crop);
    result.rotation = box.rotation;
    return result;
}

std::optional<PageBox> unpacked(const Box &box)
{
    const bool turned = box.rotation == 0 || box.rotation == 90 || box.rotation == 180 || box.rotation == 270;
    if (!turned || !isRect(box.media) || !isRect(box.crop))
        return std::nullopt;
    return PageBox{ rect(box.media), rect(box.crop), box.rotation };
}

bool send(int socket, const void *bytes, std::size_t count, int descriptor)
{
    iovec content{ const_cast<void *>(bytes), count };
    msghdr message{};
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))]{};
    if (descriptor >= 0) {
        message.msg_control = control;
        message.msg_controllen = sizeof(control);
        cmsghdr *header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof(int));
        std::memcpy(CMSG_DATA(header), &descriptor, sizeof(int));
    }
    ssize_t sent = -1;
    do {
        sent = ::sendmsg(socket, &message, MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent == ssize_t(count);
}

bool receive(int socket, void *bytes, std::size_t count, FileDescriptor *descriptor)
{
    iovec content{ bytes, count };
    msghdr message{};
    message.msg_iov = &content;
    message.msg_iovlen = 1;
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))]{};
    if (descriptor) {
        message.msg_control = control;
        message.msg_controllen = sizeof(control);
    }
    ssize_t received = -1;
    do {
        received = ::recvmsg(socket, &message, MSG_CMSG_CLOEXEC);
    } while (received < 0 && errno == EINTR);
    if (received < 0)
        return false;
    // Without room for them, the system closes files that come along.
    const cmsghdr *header = descriptor ? CMSG_FIRSTHDR(&message) : nullptr;
    if (header && header->cmsg_level == SOL_SOCKET && header->cmsg_type == SCM_RIGHTS) {
        int number = -1;
        std::memcpy(&number, CMSG_DATA(header), sizeof(int));
        *descriptor = FileDescriptor(number);
    }
    return received == ssize_t(count) && !(message.msg_flags & MSG_TRUNC);
}

} // namespace PDFProtocol
