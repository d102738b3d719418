// The page comes to life.
{
    const data = JSON.parse(document.getElementById('data').textContent);
    const search = new Search();
    const page = data.command === 'check' ? new Report(data, search) : new Explanation(data, search);
    page.render(document.getElementById('main'));
}
