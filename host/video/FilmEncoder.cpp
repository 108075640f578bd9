#include "host/video/FilmEncoder.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <exception>
#include <utility>

namespace grouptracker {

namespace {

/// From the one that every player and browser knows to the one that is always there.
const std::array<const char*, 3> encoders{"libx264", "mpeg4", "mjpeg"};

struct Free {
  void operator()(AVFormatContext* context) const { avformat_free_context(context); }
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
  void operator()(SwsContext* context) const { sws_freeContext(context); }
  void operator()(AVIOContext* context) const {
    av_freep(&context->buffer);
    avio_context_free(&context);
  }
};
template <typename Type>
using Owned = std::unique_ptr<Type, Free>;

/// The bytes of the film on their way to the file. What goes wrong there must not pass through the
/// library, so it is kept until that has returned.
class FilmBytes {
 public:
  explicit FilmBytes(FilmTarget& target) : m_target(target) {
    constexpr int bufferSize = 64 * 1024;  // bytes
    auto* const buffer = static_cast<unsigned char*>(av_malloc(bufferSize));
    m_stream.reset(avio_alloc_context(buffer, bufferSize, 1, this, nullptr, write, seek));
    m_stream->seekable = m_target.canBeRewritten() ? AVIO_SEEKABLE_NORMAL : 0;
  }

  AVIOContext* stream() { return m_stream.get(); }
  void rethrow() {
    if (m_failure) {
      std::rethrow_exception(std::exchange(m_failure, nullptr));
    }
  }

 private:
  static int write(void* self, std::uint8_t* bytes, int count) {
    auto& film = *static_cast<FilmBytes*>(self);
    try {
      film.put({reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count)});
      return count;
    } catch (...) {
      film.m_failure = film.m_failure ? film.m_failure : std::current_exception();
      return AVERROR(EIO);
    }
  }
  static std::int64_t seek(void* self, std::int64_t offset, int whence) {
    auto& film = *static_cast<FilmBytes*>(self);
    if ((whence & AVSEEK_SIZE) != 0) {
      return film.m_end;
    }
    film.m_at = (whence & ~AVSEEK_FORCE) == SEEK_CUR   ? film.m_at + offset
                : (whence & ~AVSEEK_FORCE) == SEEK_END ? film.m_end + offset
                                                       : offset;
    return film.m_at;
  }
  void put(std::string_view bytes) {
    const auto known = std::min(bytes.size(), static_cast<std::size_t>(m_end - m_at));
    if (known > 0) {
      m_target.rewrite(m_at, bytes.substr(0, known));
    }
    m_target.append(bytes.substr(known));
    m_at += static_cast<std::int64_t>(bytes.size());
    m_end = std::max(m_end, m_at);
  }

  FilmTarget& m_target;
  Owned<AVIOContext> m_stream;
  std::int64_t m_at = 0;
  std::int64_t m_end = 0;
  std::exception_ptr m_failure;
};

}  // namespace

/// All that the libraries hold while a film is made; begun by the first picture.
class FilmEncoder::Encoding {
 public:
  Encoding(FilmTarget& target, const std::string& name, double rate)
      : m_name(name), m_rate(rate), m_bytes(target) {
    av_log_set_level(AV_LOG_QUIET);
  }

  void add(const cv::Mat& picture) {
    if (!m_hasBegun) {
      open({picture.cols & ~1, picture.rows & ~1});
      m_hasBegun = true;
    }
    check(av_frame_make_writable(m_frame.get()));
    const std::array<const std::uint8_t*, 1> rows{picture.data};
    const std::array<int, 1> stride{static_cast<int>(picture.step)};
    sws_scale(m_colours.get(), rows.data(), stride.data(), 0, m_codec->height, m_frame->data,
              m_frame->linesize);
    m_frame->pts = m_pictures++;
    encode(m_frame.get());
  }

  void finish() {
    if (!std::exchange(m_hasBegun, false)) {
      return;
    }
    encode(nullptr);
    check(av_write_trailer(m_format.get()));
    avio_flush(m_bytes.stream());
    m_format.reset();
    m_bytes.rethrow();
  }

 private:
  void open(const cv::Size& size) {
    AVFormatContext* format = nullptr;
    avformat_alloc_output_context2(&format, nullptr, nullptr, m_name.c_str());
    m_format.reset(format);
    if (!m_format || !std::any_of(encoders.begin(), encoders.end(),
                                  [&](const char* name) { return openEncoder(name, size); })) {
      throw FilmProblem("no codec for it is installed");
    }
    AVStream* const stream = avformat_new_stream(m_format.get(), nullptr);
    stream->time_base = m_codec->time_base;
    stream->avg_frame_rate = m_codec->framerate;
    avcodec_parameters_from_context(stream->codecpar, m_codec.get());
    m_format->pb = m_bytes.stream();
    m_format->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_FLUSH_PACKETS;
    AVDictionary* options = nullptr;  // each is known to one of the forms only
    av_dict_set(&options, "movflags", "frag_keyframe+empty_moov+default_base_moof", 0);
    av_dict_set(&options, "cluster_time_limit", "1000", 0);  // ms
    const int result = avformat_write_header(m_format.get(), &options);
    av_dict_free(&options);
    check(result);
    m_frame.reset(av_frame_alloc());
    m_frame->format = m_codec->pix_fmt;
    m_frame->width = size.width;
    m_frame->height = size.height;
    check(av_frame_get_buffer(m_frame.get(), 0));
    m_packet.reset(av_packet_alloc());
    m_colours.reset(sws_getContext(size.width, size.height, AV_PIX_FMT_BGR24, size.width,
                                   size.height, m_codec->pix_fmt, SWS_BICUBIC, nullptr, nullptr,
                                   nullptr));
  }

  bool openEncoder(const char* name, const cv::Size& size) {
    const AVCodec* const codec = avcodec_find_encoder_by_name(name);
    if (codec == nullptr || avformat_query_codec(m_format->oformat, codec->id, 0) != 1) {
      return false;
    }
    constexpr int finest = 100000;
    constexpr int fewestBits = 4000000;  // a second, for an encoder that knows no quality
    m_codec.reset(avcodec_alloc_context3(codec));
    m_codec->width = size.width;
    m_codec->height = size.height;
    m_codec->framerate = av_d2q(m_rate, finest);
    m_codec->time_base = av_inv_q(m_codec->framerate);
    m_codec->pix_fmt = codec->id == AV_CODEC_ID_MJPEG ? AV_PIX_FMT_YUVJ420P : AV_PIX_FMT_YUV420P;
    m_codec->gop_size = std::max(1, static_cast<int>(std::lround(m_rate)));  // a second
    m_codec->max_b_frames = 0;
    m_codec->bit_rate = codec->id == AV_CODEC_ID_H264 ? 0 : fewestBits;
    if ((m_format->oformat->flags & AVFMT_GLOBALHEADER) != 0) {
      m_codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    // Without a look ahead, which would keep the last seconds in memory.
    av_opt_set(m_codec->priv_data, "tune", "zerolatency", 0);
    // The usual preset takes three times as long for hardly smaller files.
    av_opt_set(m_codec->priv_data, "preset", "veryfast", 0);
    av_opt_set(m_codec->priv_data, "crf", "24", 0);
    return avcodec_open2(m_codec.get(), codec, nullptr) >= 0;
  }

  void encode(const AVFrame* frame) {
    check(avcodec_send_frame(m_codec.get(), frame));
    while (avcodec_receive_packet(m_codec.get(), m_packet.get()) >= 0) {
      const AVStream& stream = **m_format->streams;
      av_packet_rescale_ts(m_packet.get(), m_codec->time_base, stream.time_base);
      m_packet->duration = av_rescale_q(1, m_codec->time_base, stream.time_base);
      m_packet->stream_index = 0;
      check(av_interleaved_write_frame(m_format.get(), m_packet.get()));
    }
  }

  void check(int result) {
    m_bytes.rethrow();
    if (result < 0) {
      std::array<char, AV_ERROR_MAX_STRING_SIZE> reason{};
      av_strerror(result, reason.data(), reason.size());
      throw FilmProblem(reason.data());
    }
  }

  std::string m_name;
  double m_rate;
  FilmBytes m_bytes;
  bool m_hasBegun = false;  ///< with the first picture, and not ended
  Owned<AVFormatContext> m_format;
  Owned<AVCodecContext> m_codec;
  Owned<AVFrame> m_frame;
  Owned<AVPacket> m_packet;
  Owned<SwsContext> m_colours;
  std::int64_t m_pictures = 0;
};

FilmEncoder::FilmEncoder(FilmTarget& target, const std::string& name, double rate)
    : m_encoding(std::make_unique<Encoding>(target, name, rate)) {}

FilmEncoder::~FilmEncoder() = default;

void FilmEncoder::add(const cv::Mat& picture) {
  m_encoding->add(picture);
}

void FilmEncoder::finish() {
  m_encoding->finish();
}

}  // namespace grouptracker
