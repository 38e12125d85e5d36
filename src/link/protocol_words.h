/// The words of the units' protocol: what the commands and response codes mean. No other file contains such a code.
#pragma once

#include <QLatin1String>

/// Read commands, as they go out.
inline constexpr QLatin1String kReadAttributes("0501");           ///< model and version of the interface unit
inline constexpr QLatin1String kReadStatus("0601");               ///< unit status and number of sensor amplifiers
inline constexpr QLatin1String kCheckSensor("0101D40001000001");  ///< the amplifier's type number: does it answer?

/// Variable areas of the sensor amplifier.
inline constexpr QLatin1String kTypeNumberArea("D4");
inline constexpr QLatin1String kKindArea("D5");

/// Operation commands: what brings a unit into a transfer and back.
inline constexpr QLatin1String kPrepareWrite("50");   ///< before kStartDownload
inline constexpr QLatin1String kStartDownload("51");  ///< the unit receives an image by XMODEM
inline constexpr QLatin1String kStartUpload("52");    ///< the unit sends its firmware by XMODEM
inline constexpr QLatin1String kResume("53");         ///< back to normal operation; the last command of a run
inline constexpr QLatin1String kEndTransfer("54");    ///< the transfer is over

/// Response codes that the program acts on; response_codes.h knows the others.
inline constexpr QLatin1String kNormalEnd("0000");           ///< carried out
inline constexpr QLatin1String kNotIdentifiable("1004");     ///< to a status read: the units cannot be identified now
inline constexpr QLatin1String kCommunicationFault("1234");  ///< shown as such at the last attempt
inline constexpr QLatin1String kNotAvailable("2204");        ///< to the connection test: end; to a type read: no type
inline constexpr QLatin1String kNoReply("9999");             ///< formed here: no usable result
