#include "conversionresult.h"

#include "framereader.h"
#include "framewriter.h"

void ConversionResult::writeTo(FrameWriter* frame) const
{
    frame->number(static_cast<std::uint64_t>(status));
    frame->text(reports);
    frame->text(document);
    coverage.writeTo(frame);
}

ConversionResult ConversionResult::readFrom(FrameReader* frame)
{
    ConversionResult result;
    result.status = static_cast<ExitCode>(frame->number());
    result.reports = frame->text();
    result.document = frame->text();
    result.coverage = MessageCoverage::readFrom(frame);
    return result;
}
