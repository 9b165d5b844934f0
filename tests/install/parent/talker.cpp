// Uses the smaller of the libraries, in the language of the parent.
#include <platform/QCopChannel.h>

static_assert(__cplusplus == 201703L, "the parent's language level");

int main()
{
    return QCopChannel::send(QCString(), QCString()) ? 1 : 0; // without a name nothing is sent
}
