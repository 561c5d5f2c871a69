#pragma once

#include "foundation/Error.h"
#include "google/HttpClient.h"

namespace quorvane {

/// What Google did not take. Its fault has the code by which whoever catches it decides; the area
/// is only where it is told from.
class GoogleError : public Error {
  public:
    enum class Area { upload, batch, album };

    /// Refused by its status. `intoAlbum`: items were to go into an album.
    static GoogleError http(Area area, const HttpResponse& response, bool intoAlbum = false);
    static GoogleError invalidResponse(Area area); ///< without what the protocol wants
    static GoogleError emptyToken();               ///< of an upload: answered with nothing
    static GoogleError noToken();                  ///< answered with something that is none
    static GoogleError tooLarge(bool isMovie);     ///< beyond what Google takes; nothing was sent

  private:
    using Error::Error;
};

} // namespace quorvane
