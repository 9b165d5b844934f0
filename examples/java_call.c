/*
 * A call placed by a runtime that knows no C++: it loads the phone library when it needs it and finds the functions by
 * their names, which utility/PHONE_VoiceJava.h describes.
 *
 * On a desk: zyn-recentcalld & zyn-phoned &
 *            java_call 0301112222    keys typed then are dialed within the call; their end, Ctrl-D, hangs up
 */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

struct phone
{
    int (*init)(void (*on_reply)(char code));
    int (*make_call)(int handle, const char* number, int value);
    int (*dial_extension)(int handle, char character);
    int (*end_call)(int handle);
    void (*deinit)(int handle);
};

/* Finds what a function pointer is to point at; dlsym() does not tell functions and data apart; standard C does. */
static int find(void* library, const char* name, void* function)
{
    void* const symbol = dlsym(library, name);
    *(void**)function = symbol;
    return symbol != NULL;
}

static int load(struct phone* phone)
{
    void* const library = dlopen("libzynphone.so.1", RTLD_NOW);
    return library && find(library, "PHONE_VoiceCall_Java_Init", &phone->init)
           && find(library, "PHONE_VoiceCall_Java_MakeCall", &phone->make_call)
           && find(library, "PHONE_VoiceCall_Java_DialExtension", &phone->dial_extension)
           && find(library, "PHONE_VoiceCall_Java_EndCall", &phone->end_call)
           && find(library, "PHONE_VoiceCall_Java_DeInit", &phone->deinit);
}

/* Called from Qt's event loop, where the process has one; it must be there all the same. */
static void on_reply(char code)
{
    printf("The phone server replies %d.\n", code);
}

int main(int argc, char** argv)
{
    struct phone phone;

    if (argc != 2) {
        fprintf(stderr, "usage: %s NUMBER\n", argv[0]);
        return 2;
    }
    if (!load(&phone)) {
        fprintf(stderr, "There is no phone library here: %s\n", dlerror());
        return EXIT_FAILURE;
    }
    const int handle = phone.init(on_reply);
    if (handle == 0) {
        fputs("There is no phone server here.\n", stderr);
        return EXIT_FAILURE;
    }
    int result = phone.make_call(handle, argv[1], 0);
    if (result == 0)
        printf("A call to %s is asked for.\n", argv[1]);
    fflush(stdout);
    for (int key = 0; result == 0 && (key = getchar()) != EOF;) {
        if (key != '\n')
            result = phone.dial_extension(handle, (char)key);
    }
    if (result == 0)
        result = phone.end_call(handle);
    phone.deinit(handle);
    if (result != 0) {
        fputs("The phone server does not take that.\n", stderr);
        return EXIT_FAILURE;
    }
    puts("The end of the call is asked for.");
    return fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
