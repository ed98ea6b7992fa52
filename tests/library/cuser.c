/* The library as a C program uses it. Also the proof that adexp.h is C. */
#include "adexp.h"

#include <stdio.h>
#include <string.h>

static const char settings[] = ":/adexp/adexp.ini";
static const char message[] = "-TITLE ACK -MSGTYP IFPL";

int main(void)
{
    unsigned int length = 0;
    const char* document;
    int begins;

    if (init_adexp(settings, (int)strlen(settings)) != 0) {
        fputs("the rule set is not loaded\n", stderr);
        return 1;
    }
    document = convert_from_adexp(message, (unsigned int)strlen(message), &length);
    begins = document && strncmp(document, "<ADEXP_XML ", 11) == 0 && document[length] == '\0';
    free_adexp(document);
    clear_adexp();
    if (!begins) {
        fputs("there is no document\n", stderr);
        return 1;
    }
    return 0;
}
