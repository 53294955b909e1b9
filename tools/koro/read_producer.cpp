#include "tools/koro/read_producer.h"

#include "tools/koro/opened_producer.h"

namespace koro::tool
{

ProducerRecord ReadProducer(
    const std::string& path, const std::string& wanted, const std::function<void(const char*)>& atStage)
{
    atStage("load");
    OpenedProducer producer(path);
    ProducerRecord record = producer.Describe();
    try
    {
        atStage("open");
        producer.Open();
        atStage("list");
        producer.List(record, wanted);
    }
    catch (const Error& error)
    {
        record.problem = error.what();
    }
    return record;
}

} // namespace koro::tool
