#include <kestrel/coding/wire_form.h>
#include <kestrel/files/image_asset.h>

namespace kestrel {

KESTREL_FIELDS(ImageAsset, imageAssetID, createDate, data, deletionDate, deletionIdentifier, deletionUserID, height,
               mimeType, modifyDate, name, width);

}  // namespace kestrel
