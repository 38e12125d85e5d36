/* Preloaded into Wine by check: gives a pseudo-terminal the modem lines of a serial port. Without them Wine cannot wait
   for bytes as Windows does, and the program would not run the way that it runs there. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdarg.h>
#include <sys/ioctl.h>
#include <unistd.h>

int ioctl(int port, unsigned long request, ...) {
    static int (*systems)(int, unsigned long, void *);
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    if (systems == NULL)
        systems = (int (*)(int, unsigned long, void *))dlsym(RTLD_NEXT, "ioctl");
    const int result = systems(port, request, argument);
    if (result == 0 || !isatty(port))
        return result;
    if (request == TIOCMGET)
        *(int *)argument = TIOCM_CTS | TIOCM_DSR | TIOCM_CAR;
    return request == TIOCMGET || request == TIOCMSET || request == TIOCMBIS || request == TIOCMBIC ? 0 : result;
}
