/* Converts the message (up to 1 MB) on standard input: ./convert < plan.adexp > plan.xml */
#include <adexp.h>
#include <stdio.h>

static const char settings[] = ":/adexp/adexp.ini"; /* the rule set in the library */
static char message[1000000];

int main(void)
{
    unsigned int messageLength = (unsigned int)fread(message, 1, sizeof message, stdin);
    unsigned int documentLength = 0;
    const char* document;

    if (init_adexp(settings, sizeof settings - 1) != 0)
        return 2;
    document = convert_from_adexp(message, messageLength, &documentLength);
    if (document)
        fwrite(document, 1, documentLength, stdout);
    free_adexp(document);
    clear_adexp();
    return documentLength > 0 ? 0 : 1;
}
