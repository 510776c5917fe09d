/* The first parts of requests. */

#ifndef BENCHMARKS_REQUESTS_H_
#define BENCHMARKS_REQUESTS_H_

#define REQUEST(method) "{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"" method "\",\"params\":"
#define CALL(tool) REQUEST("tools/call") "{\"name\":\"" tool "\",\"arguments\":{"

#endif
