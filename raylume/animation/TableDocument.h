// The XML document object over the platform's table.
#pragma once

#include "raylume/animation/XmlDocument.h"
#include "raylume/platform/XmlTable.h"

/// Documents that keep the elements and attributes of the side file and nothing else. Objects that a
/// document handed out must not be used after it is gone.
class TableXmlService final : public XmlService {
public:
    TableXmlService() = default;
    /// Reads what `open` opens instead of the file at the path of a load.
    explicit TableXmlService(platform::XmlTable::Open open);

    XmlPointer<XmlDocument> createDocument() override;

private:
    platform::XmlTable::Open open_;
};
