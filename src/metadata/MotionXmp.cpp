#include "metadata/MotionXmp.h"

#include "metadata/Rewrite.h"

#include <QStringDecoder>
#include <QXmlStreamReader>

namespace quorvane::motion {

namespace {

const QString rdfSpace = QStringLiteral("http://www.w3.org/1999/02/22-rdf-syntax-ns#");
const QString cameraSpace = QStringLiteral("http://ns.google.com/photos/1.0/camera/");
const QString containerSpace = QStringLiteral("http://ns.google.com/photos/1.0/container/");
const QString itemSpace = QStringLiteral("http://ns.google.com/photos/1.0/container/item/");

const QString emptyPacket =
    QStringLiteral("<?xpacket begin=\"\uFEFF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>"
                   "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">"
                   "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
                   "<rdf:Description rdf:about=\"\"/></rdf:RDF></x:xmpmeta><?xpacket end=\"w\"?>");

/// What a packet has that concerns a movie, and where there is room for more. Places count the
/// characters of the text.
struct Packet {
    QString text;
    qsizetype description = -1;  ///< behind the start tag of the first description
    QStringList declared;        ///< prefixes that it declares
    qsizetype directoryEnd = -1; ///< before the end tag of the directory's list
    bool hasDirectory = false;
    bool hasMovie = false;
    std::optional<std::uint64_t> movieLength; ///< of the directory's last part, when it is a movie
};

class PacketReader {
  public:
    explicit PacketReader(const QByteArray& packet) {
        QStringDecoder decoder(QStringDecoder::Utf8);
        packet_.text = decoder(packet);
        if (decoder.hasError())
            throw ContainerError(QStringLiteral("XMP paketi okunamıyor"));
        while (packet_.text.endsWith(QChar::Null)) // some writers end it like a C string
            packet_.text.chop(1);
    }

    Packet read() {
        QXmlStreamReader xml(packet_.text);
        while (!xml.atEnd()) {
            xml.readNext();
            if (xml.isStartElement())
                start(xml);
            else if (xml.isEndElement())
                end(xml);
            else if (xml.isCharacters() && isFlag_)
                packet_.hasMovie |= xml.text().trimmed() != u"0" && !xml.isWhitespace();
        }
        if (xml.hasError())
            throw ContainerError(QStringLiteral("XMP paketi okunamıyor: ") + xml.errorString());
        return std::move(packet_);
    }

  private:
    void start(const QXmlStreamReader& xml) {
        for (const auto& declaration : xml.namespaceDeclarations())
            requireUsual(declaration);
        if (isOf(xml, rdfSpace, u"Description") && packet_.description < 0) {
            packet_.description = xml.characterOffset();
            for (const auto& declaration : xml.namespaceDeclarations())
                packet_.declared += declaration.prefix().toString();
        }
        isFlag_ = isFlag(xml.namespaceUri(), xml.name());
        for (const auto& attribute : xml.attributes())
            if (isFlag(attribute.namespaceUri(), attribute.name()))
                packet_.hasMovie |= attribute.value() != u"0";
        if (isOf(xml, containerSpace, u"Directory"))
            packet_.hasDirectory = isInDirectory_ = true;
        if (isInDirectory_ && isOf(xml, containerSpace, u"Item"))
            takeItem(xml.attributes());
    }

    void end(const QXmlStreamReader& xml) {
        isFlag_ = false;
        if (isOf(xml, containerSpace, u"Directory"))
            isInDirectory_ = false;
        if (isInDirectory_ && isOf(xml, rdfSpace, u"Seq"))
            packet_.directoryEnd = packet_.text.lastIndexOf(u"</", xml.characterOffset() - 1);
    }

    void takeItem(const QXmlStreamAttributes& attributes) {
        bool isNumber = false;
        const std::uint64_t length =
            attributes.value(itemSpace, QStringLiteral("Length")).toULongLong(&isNumber);
        const bool isMovie =
            attributes.value(itemSpace, QStringLiteral("Semantic")) == u"MotionPhoto";
        packet_.movieLength = isMovie && isNumber ? std::optional(length) : std::nullopt;
    }

    /// Readers look for the prefixes as such, so they may not stand for anything else.
    static void requireUsual(const QXmlStreamNamespaceDeclaration& declaration) {
        const auto prefix = declaration.prefix();
        const QString uri = declaration.namespaceUri().toString();
        if ((prefix == u"rdf" && uri != rdfSpace) || (prefix == u"GCamera" && uri != cameraSpace) ||
            (prefix == u"Container" && uri != containerSpace) ||
            (prefix == u"Item" && uri != itemSpace))
            throw ContainerError(QStringLiteral("XMP paketindeki adlar başka bir anlamda: ") +
                                 prefix.toString());
    }

    static bool isOf(const QXmlStreamReader& xml, const QString& space, QStringView name) {
        return xml.namespaceUri() == space && xml.name() == name;
    }

    /// Also of the format that came before.
    static bool isFlag(QStringView space, QStringView name) {
        return space == cameraSpace && (name == u"MotionPhoto" || name == u"MicroVideo");
    }

    Packet packet_;
    bool isInDirectory_ = false;
    bool isFlag_ = false;
};

QString itemText(const QByteArray& type, const char* semantic, std::uint64_t length,
                 std::uint64_t padding) {
    return QStringLiteral("<rdf:li rdf:parseType=\"Resource\"><Container:Item Item:Mime=\"%1\" "
                          "Item:Semantic=\"%2\" Item:Length=\"%3\" Item:Padding=\"%4\"/></rdf:li>")
        .arg(QLatin1String(type), QLatin1String(semantic))
        .arg(length)
        .arg(padding);
}

/// What the start tag of the description is to say on top.
QString attributesFor(const Packet& packet) {
    QString text;
    const std::pair<const char*, QString> spaces[] = {
        {"GCamera", cameraSpace}, {"Container", containerSpace}, {"Item", itemSpace}};
    for (const auto& [prefix, uri] : spaces)
        if (!packet.declared.contains(QLatin1String(prefix)))
            text += QStringLiteral(" xmlns:%1=\"%2\"").arg(QLatin1String(prefix), uri);
    // No moment of the movie is told to be the still's: -1.
    return text + QStringLiteral(" GCamera:MotionPhoto=\"1\" GCamera:MotionPhotoVersion=\"1\" "
                                 "GCamera:MotionPhotoPresentationTimestampUs=\"-1\"");
}

QString withoutRoom(QString text) {
    const qsizetype end = text.lastIndexOf(u"<?xpacket end=");
    qsizetype begin = end;
    while (begin > 0 && text[begin - 1].isSpace())
        --begin;
    return end < 0 ? text : text.remove(begin, end - begin);
}

} // namespace

QByteArray withMovie(const QByteArray& packet, const Announcement& movie) {
    Packet found = PacketReader(packet.isEmpty() ? emptyPacket.toUtf8() : packet).read();
    if (found.description < 0) // it says nothing
        found = PacketReader(emptyPacket.toUtf8()).read();
    if (found.hasMovie)
        throw ContainerError(QStringLiteral("Fotoğrafın zaten bir videosu var"));
    const QString item = itemText(movie.movieType, "MotionPhoto", movie.movieLength, 0);
    QString directory;
    if (!found.hasDirectory)
        directory = QStringLiteral("<Container:Directory><rdf:Seq>%1%2</rdf:Seq>"
                                   "</Container:Directory>")
                        .arg(itemText(movie.stillType, "Primary", 0, movie.stillPadding), item);
    else if (found.directoryEnd < found.description || movie.stillPadding > 0)
        throw ContainerError(QStringLiteral("XMP paketindeki dizine video eklenemiyor"));
    else // the parts that are there, a gain map for one, come before it
        found.text.insert(found.directoryEnd, item);

    const bool isEmpty = found.text[found.description - 2] == u'/';
    const qsizetype tagEnd = found.description - (isEmpty ? 2 : 1);
    const QString replacement = attributesFor(found) + u'>' + directory +
                                (isEmpty ? QStringLiteral("</rdf:Description>") : QString());
    found.text.replace(tagEnd, found.description - tagEnd, replacement);
    QByteArray result = withoutRoom(std::move(found.text)).toUtf8();
    if (announcedMovieLength(result) != movie.movieLength)
        throw ContainerError(QStringLiteral("XMP paketi tanınmayan bir biçimde"));
    return result;
}

std::optional<std::uint64_t> announcedMovieLength(const QByteArray& packet) {
    try {
        const Packet found = PacketReader(packet).read();
        return found.hasMovie ? found.movieLength : std::nullopt;
    } catch (const ContainerError&) {
        return std::nullopt;
    }
}

} // namespace quorvane::motion
