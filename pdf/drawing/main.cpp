// The process that reads a PDF for the window. PDFProcess starts it.
//
// usage: quaverly-pdf VERSION SOCKET LIFELINE MEMORY    (two open files' numbers, and a bound in bytes)

#include "pdf/drawing/Confinement.h"
#include "pdf/drawing/PagePainter.h"
#include "pdf/drawing/PageServer.h"
#include "pdf/process/PDFProtocol.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

int main(int argc, char *argv[])
{
    if (argc != 5 || std::atoi(argv[1]) != PDFProtocol::version) {
        std::fputs("quaverly-pdf is a part of Quaverly, which starts it to read PDFs.\n", stderr);
        return 2;
    }
    const int socket = std::atoi(argv[2]);
    const int lifeline = std::atoi(argv[3]);
    Confinement::keepOnly(socket, lifeline);
    if (!Confinement::endWith(lifeline))
        return 0;
    {
        // What the library opens of the system's when it starts, it opens now.
        const PagePainter rehearsal({});
    }
    Confinement::limit(std::atoll(argv[4]));
    if (!Confinement::seal()) {
        std::fputs("quaverly-pdf: the kernel does not let this process be confined\n", stderr);
        return 1;
    }
    PageServer(socket).serve();
    // Nothing here is worth tidying up; the files that strangers made are not to be trusted even with that.
    ::_exit(0);
}
